#pragma once

#include <QCoreApplication>
#include <QUiLoader>
#include <QWidget>
#include <vector>

namespace vigil {

/// Takes from Qt the folders in which it looks for plug-ins, and gives them back. A loader of interface files
/// would otherwise take all of the interface designer's into the process when it is made, and with them what
/// they link, such as the whole of Qt Quick. No interface file here has a widget of theirs.
class WithoutPlugInFolders {
  protected:
    WithoutPlugInFolders() { QCoreApplication::setLibraryPaths({}); }
    void giveBack() const { QCoreApplication::setLibraryPaths(m_folders); }

  private:
    const QStringList m_folders = QCoreApplication::libraryPaths();
};

/// Makes widgets of an interface file, and remembers those that have models, in the file's order, in which
/// the models come too. Main thread.
class InterfaceLoader : private WithoutPlugInFolders, public QUiLoader {
  public:
    InterfaceLoader() { giveBack(); }

    /// Nothing where the file cannot be read; `errorString` then says why.
    QWidget* loadFile(const QString& path, QWidget* parent);
    const std::vector<QWidget*>& modelled() const { return m_modelled; }

    QWidget* createWidget(const QString& className, QWidget* parent, const QString& name) override;

  private:
    std::vector<QWidget*> m_modelled;
};

}  // namespace vigil
