#include <QApplication>
#include <memory>

#include <gtest/gtest.h>

#include "host/desktop/Theme.hpp"

// The one application of the test program.

namespace vigil::test {
namespace {

class Application : public testing::Environment {
  public:
    void SetUp() override {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
        static int count = 1;
        static char name[] = "desktop_test";
        static char* words[] = {name, nullptr};
        m_application = std::make_unique<QApplication>(count, words);
        QCoreApplication::setOrganizationName(QStringLiteral("vigil"));
        QCoreApplication::setApplicationName(QStringLiteral("desktop_test"));
        QApplication::setQuitOnLastWindowClosed(false);
        applyTheme(*m_application, Appearance::Light);
    }
    void TearDown() override { m_application.reset(); }

  private:
    std::unique_ptr<QApplication> m_application;
};

const auto* const g_application = testing::AddGlobalTestEnvironment(new Application);

}  // namespace
}  // namespace vigil::test
