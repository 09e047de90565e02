#pragma once

#include "Tools/ZamTHash.h"

#include <QObject>
#include <QPointer>

class CAllCoresCompile;
class CShaderEditAllCoresOutput;
class CShaderEditController;
class CShaderEditPanel;
class CShaderEditor;
class QDockWidget;
class QMainWindow;
class QMenu;

// The "All Cores" dock: while it is shown, every compile of the current document is also
// run for all four bundled cores and their figures fill its table. Hidden, it costs nothing.
// Owned by the window it is added to.
class CAllCoresDock : public QObject
{
    Q_OBJECT

public:
    CAllCoresDock(QMainWindow& Window, CShaderEditor& Editor, const CShaderEditController& Controller, QMenu& ViewMenu);
    ~CAllCoresDock() override;

    QDockWidget* GetDock() const { return m_pDock; }
    const CAllCoresCompile& GetCompile() const { return *m_pCompile; }

private:
    void OnVisibilityChanged(bool bVisible);
    void CompileCurrent();
    void ShowPanel(const CZamTHash& PanelID);
    const CShaderEditPanel* CurrentPanel() const;
    CShaderEditAllCoresOutput* View();

    // The window deletes the editor before it hides its docks for the last time.
    QPointer<CShaderEditor> m_pEditor;
    CAllCoresCompile* m_pCompile = nullptr;
    CShaderEditAllCoresOutput* m_pView = nullptr; // null until the dock is first shown
    QDockWidget* m_pDock = nullptr;
};
