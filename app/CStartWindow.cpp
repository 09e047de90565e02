#include "CStartWindow.h"

#include "FileFormats.h"
#include "ShaderDocType.h"

#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontDatabase>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QSaveFile>
#include <QStatusBar>

CStartWindow::CStartWindow(QWidget* pParent)
    : QMainWindow(pParent)
    , m_pEdit(new QPlainTextEdit(this))
{
    m_pEdit->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_pEdit->setLineWrapMode(QPlainTextEdit::NoWrap);
    setCentralWidget(m_pEdit);

    QMenu* pFile = menuBar()->addMenu(tr("&File"));
    pFile->addAction(tr("&Open..."), QKeySequence::Open, this, &CStartWindow::OnOpen);
    pFile->addAction(tr("&Save"), QKeySequence::Save, this, &CStartWindow::OnSave);
    pFile->addSeparator();
    pFile->addAction(tr("&Quit"), QKeySequence::Quit, this, &QWidget::close);

    resize(900, 700);
    ShowFileState();
}

bool CStartWindow::OpenFile(const QString& Path)
{
    QFile File(Path);
    if (!File.open(QIODevice::ReadOnly))
    {
        QMessageBox::warning(this, tr("Open File"), tr("Could not open %1:\n%2").arg(Path, File.errorString()));
        return false;
    }
    m_pEdit->setPlainText(QString::fromUtf8(File.readAll()));
    m_Path = Path;
    ShowFileState();
    return true;
}

void CStartWindow::OnOpen()
{
    const QString Path = QFileDialog::getOpenFileName(this, tr("Open File"), QString(), GetFileDialogFilter());
    if (!Path.isEmpty())
        OpenFile(Path);
}

void CStartWindow::OnSave()
{
    if (m_Path.isEmpty())
        m_Path = QFileDialog::getSaveFileName(this, tr("Save As"), QString(), GetFileDialogFilter());
    if (m_Path.isEmpty())
        return;
    QSaveFile File(m_Path);
    if (!File.open(QIODevice::WriteOnly) || File.write(m_pEdit->toPlainText().toUtf8()) < 0 || !File.commit())
        QMessageBox::warning(this, tr("Save As"), tr("Could not save %1:\n%2").arg(m_Path, File.errorString()));
    ShowFileState();
}

void CStartWindow::ShowFileState()
{
    if (m_Path.isEmpty())
    {
        setWindowTitle(QStringLiteral("ZamShaderEditor"));
        statusBar()->showMessage(tr("No file open"));
        return;
    }
    const QByteArray Text = m_pEdit->toPlainText().toUtf8();
    const QByteArray Extension = QFileInfo(m_Path).suffix().toUtf8();
    const EShaderDocType eType = DetectDocumentType(CZamTString(Text.constData(), Text.size()),
                                                    CZamTString(Extension.constData()));
    setWindowTitle(QStringLiteral("%1 - ZamShaderEditor").arg(QFileInfo(m_Path).fileName()));
    statusBar()->showMessage(GetDocTypeName(eType));
}
