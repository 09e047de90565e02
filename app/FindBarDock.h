#pragma once

#include <QObject>

class CFindReplace;
class CShaderEditor;
class QAction;
class QDockWidget;
class QMainWindow;

// The find bar's dock below the editor. The dock is there from the start, so a stored window
// layout finds it by name; the bar in it is made when Find or Replace first asks for it, or at
// once when the restored layout shows the dock. Owned by the window it is added to.
class CFindBarDock : public QObject
{
    Q_OBJECT

public:
    CFindBarDock(QMainWindow& Window, CShaderEditor& Editor, QAction& Find, QAction& Replace);

    QDockWidget* GetDock() const { return m_pDock; }
    // Makes the bar if the dock is to be shown; call after the window layout is restored.
    void MakeBarIfShown();

private:
    CFindReplace* Bar();

    CShaderEditor& m_Editor;
    QAction& m_Find;
    QDockWidget* m_pDock = nullptr;
    CFindReplace* m_pBar = nullptr;
};
