#pragma once

#include <QMainWindow>

class QPlainTextEdit;

// A plain viewer and editor for one shader file: the first window of the program, until the
// tabbed editor takes its place. It shows what exists today and nothing more.
class CStartWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit CStartWindow(QWidget* pParent = nullptr);

    bool OpenFile(const QString& Path);

private slots:
    void OnOpen();
    void OnSave();

private:
    void ShowFileState();

    QPlainTextEdit* m_pEdit = nullptr;
    QString m_Path;
};
