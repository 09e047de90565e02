#include "FindBarDock.h"

#include "ShaderEditComponent/CFindReplace.h"
#include "ShaderEditComponent/CShaderEditor.h"

#include <QAction>
#include <QDockWidget>
#include <QMainWindow>

CFindBarDock::CFindBarDock(QMainWindow& Window, CShaderEditor& Editor, QAction& Find, QAction& Replace)
    : QObject(&Window)
    , m_Editor(Editor)
    , m_Find(Find)
{
    setObjectName(QStringLiteral("FindBarDock"));
    m_pDock = new QDockWidget(&Window);
    m_pDock->setObjectName(QStringLiteral("FindDock"));
    m_pDock->setFeatures(QDockWidget::NoDockWidgetFeatures);
    m_pDock->setTitleBarWidget(new QWidget(m_pDock));
    Window.addDockWidget(Qt::BottomDockWidgetArea, m_pDock);
    m_pDock->hide();

    connect(&Find, &QAction::triggered, this,
            [this]
            {
                Bar()->ShowFind();
                // A checkable action flips on every trigger; it shows whether the bar is there.
                m_Find.setChecked(m_pDock->isVisible());
            });
    connect(&Replace, &QAction::triggered, this, [this] { Bar()->ShowReplace(); });
}

void CFindBarDock::MakeBarIfShown()
{
    if (!m_pDock->isHidden())
        Bar();
}

CFindReplace* CFindBarDock::Bar()
{
    if (m_pBar)
        return m_pBar;
    m_pBar = new CFindReplace(m_pDock);
    m_pBar->setObjectName(QStringLiteral("FindReplaceDialog"));
    m_pBar->SetDelegate(&m_Editor);
    connect(m_pBar, &CFindReplace::visibilityChanged, &m_Find, &QAction::setChecked);
    m_pDock->setWidget(m_pBar);
    return m_pBar;
}
