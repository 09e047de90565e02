// Starts the way the editor does (with ZAM_INSTANCE_HOST_LATE set, without the hand-over
// before the application object). A second start hands its message over and exits 0; the first
// instance prints "first <server path>", then every message and file-open request it receives,
// one line each, and takes commands on standard input:
//   fileopen <path>    post the platform's file-open event to the application
//   block <file>       keep the event loop busy until <file> exists (a long compile)
//   quit               leave the event loop (so does the end of standard input)

#include "app/instance/CSingleApplication.h"
#include "app/instance/InstanceHandOver.h"
#include "app/instance/InstanceMessage.h"

#include <QFile>
#include <QFileOpenEvent>
#include <QSocketNotifier>
#include <QThread>

#include <cstdio>
#include <unistd.h>

namespace
{
void PrintLine(const QString& Kind, const QString& Text)
{
    QString Escaped = Text;
    Escaped.replace(QLatin1Char('\\'), QStringLiteral("\\\\")).replace(QLatin1Char('\n'), QStringLiteral("\\n"));
    std::fputs(QString(Kind + QLatin1Char(' ') + Escaped + QLatin1Char('\n')).toUtf8().constData(), stdout);
    std::fflush(stdout);
}

void BlockUntilExists(const QString& File)
{
    PrintLine(QStringLiteral("blocking"), File);
    while (!QFile::exists(File))
        QThread::msleep(5);
    PrintLine(QStringLiteral("unblocked"), File);
}

void RunCommand(CSingleApplication& App, const QString& Line)
{
    const QString Command = Line.section(QLatin1Char(' '), 0, 0);
    const QString Argument = Line.section(QLatin1Char(' '), 1);
    if (Command == QLatin1String("fileopen"))
        QCoreApplication::postEvent(&App, new QFileOpenEvent(Argument));
    else if (Command == QLatin1String("block"))
        BlockUntilExists(Argument);
    else if (Command == QLatin1String("quit"))
        App.quit();
}
} // namespace

int main(int argc, char** argv)
{
    QStringList Arguments;
    for (int i = 0; i < argc; ++i)
        Arguments << QString::fromLocal8Bit(argv[i]);
    if (!qEnvironmentVariableIsSet("ZAM_INSTANCE_HOST_LATE")
        && HandOverToRunningInstance(QStringLiteral("ZamShaderEditor"), Arguments))
        return 0;
    CSingleApplication App(argc, argv, QStringLiteral("ZamShaderEditor"));
    if (App.IsRunning())
    {
        const QString Message = HandOverMessage(QCoreApplication::arguments());
        if (!Message.isEmpty())
            App.SendMessage(Message);
        return 0;
    }

    QObject::connect(&App, &CSingleApplication::MessageAvailable,
                     [](const QString& Message) { PrintLine(QStringLiteral("message"), Message); });
    QObject::connect(&App, &CSingleApplication::FileOpenEvent,
                     [](const QString& File) { PrintLine(QStringLiteral("fileopen"), File); });

    QByteArray Input;
    QSocketNotifier StandardInput(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&StandardInput, &QSocketNotifier::activated, [&]() {
        char Buffer[4096];
        const ssize_t iRead = ::read(STDIN_FILENO, Buffer, sizeof(Buffer));
        if (iRead <= 0)
        {
            StandardInput.setEnabled(false);
            App.quit();
            return;
        }
        Input.append(Buffer, qsizetype(iRead));
        for (qsizetype iEnd = Input.indexOf('\n'); iEnd >= 0; iEnd = Input.indexOf('\n'))
        {
            RunCommand(App, QString::fromUtf8(Input.left(iEnd)));
            Input.remove(0, iEnd + 1);
        }
    });

    PrintLine(QStringLiteral("first"), App.ServerPath());
    return App.exec();
}
