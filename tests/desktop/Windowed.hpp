#pragma once

#include <QAction>
#include <QToolBar>
#include <string>

#include <gtest/gtest.h>

#include "host/desktop/Words.hpp"
#include "tests/desktop/DesktopBench.hpp"
#include "tests/desktop/Stage.hpp"

namespace vigil::test {

/// A window on a first site.
class Windowed : public testing::Test {
  protected:
    void openFirst() {
        stage.open("home", /*first=*/true);
        ASSERT_TRUE(waitUntil([&] { return pane() && pane()->view(); }));
    }
    MonitorPane* pane() { return stage.window().pane(); }
    InterfaceView& view() { return *pane()->view(); }
    MonitorStatus status(const std::string& title) {
        for (const StationStatus& station : stage.session().site().status().stations)
            for (const MonitorStatus& monitor : station.monitors)
                if (monitor.title == title) return monitor;
        return {};
    }
    void pressVigil() {
        for (QAction* action : stage.window().findChild<QToolBar*>("tools")->actions())
            if (action->property("plugIn").toBool()) return action->trigger();
        FAIL() << "no plug-in has an item in the toolbar";
    }
    std::string chosenTitle() {
        HostedPlugIn* hosted = stage.session().site().plugIn(stage.window().monitor());
        return hosted ? hosted->plugIn()->title() : "";
    }

    Stage stage;
};

}  // namespace vigil::test
