#pragma once

#include <QUiLoader>
#include <QWidget>
#include <vector>

namespace vigil {

/// Makes widgets of an interface file, and remembers those that have models, in the file's order, in which
/// the models come too. Main thread.
class InterfaceLoader : public QUiLoader {
  public:
    /// Nothing where the file cannot be read; `errorString` then says why.
    QWidget* loadFile(const QString& path, QWidget* parent);
    const std::vector<QWidget*>& modelled() const { return m_modelled; }

    QWidget* createWidget(const QString& className, QWidget* parent, const QString& name) override;

  private:
    std::vector<QWidget*> m_modelled;
};

}  // namespace vigil
