// The editor's window with its document backups, driven for the crash figure.
//   reliability_editor_host type TABS   opens TABS new documents and types into them in turn,
//                                       one key every 8 ms, until killed; after each key it
//                                       prints "key <tab> <count> <monotonic ms>"
//   reliability_editor_host restore     restores every backup a killed session left, prints
//                                       "tab <title>\t<text>" per tab (\\, \n, \t escaped), exits

#include "app/ZamShaderEditorWindow.h"
#include "ShaderEditComponent/CDocumentBackups.h"
#include "ShaderEditComponent/compile/model/MetaTypes.h"
#include "ShaderEditComponent/CShaderEditor.h"
#include "ShaderEditComponent/CShaderEditPanel.h"

#include <QApplication>
#include <QKeyEvent>
#include <QTimer>

#include <cstdio>
#include <ctime>
#include <vector>

namespace
{
const char s_Keys[] = "abcdefghijklmnopqrstuvwxyz ";

long long MonotonicMs()
{
    timespec Now{};
    clock_gettime(CLOCK_MONOTONIC, &Now);
    return static_cast<long long>(Now.tv_sec) * 1000 + Now.tv_nsec / 1000000;
}

QString Escaped(QString Text)
{
    return Text.replace(QLatin1Char('\\'), QLatin1String("\\\\"))
        .replace(QLatin1Char('\n'), QLatin1String("\\n"))
        .replace(QLatin1Char('\t'), QLatin1String("\\t"));
}

int Type(QApplication& App, CShaderEditor* pEditor, int iTabs)
{
    const EShaderDocType aTypes[] = {DocType_GLSLESFragment, DocType_GLSLESVertex, DocType_PlainText,
                                     DocType_OpenCLKernel, DocType_HLSLFragment};
    for (int i = 0; i < iTabs; ++i)
        pEditor->OnNewFile(aTypes[i % 5]);
    std::vector<int> Counts(static_cast<size_t>(iTabs), 0);
    int iNext = 0;
    QTimer Keys;
    QObject::connect(&Keys, &QTimer::timeout, pEditor,
                     [&]
                     {
                         const int iTab = iNext++ % iTabs;
                         const QChar Key = QLatin1Char(s_Keys[Counts[iTab] % (sizeof(s_Keys) - 1)]);
                         QKeyEvent Press(QEvent::KeyPress, 0, Qt::NoModifier, QString(Key));
                         QCoreApplication::sendEvent(pEditor->GetPanel(iTab), &Press);
                         ++Counts[iTab];
                         std::printf("key %d %d %lld\n", iTab, Counts[iTab], MonotonicMs());
                         std::fflush(stdout);
                     });
    Keys.start(8);
    return App.exec();
}

int Restore(CShaderEditor* pEditor, CDocumentBackups& Backups)
{
    const SBackupScan Scan = Backups.FindLeftBackups();
    Backups.Restore(Scan.Backups);
    for (int i = 0; i < pEditor->GetTabCount(); ++i)
    {
        const QString Line = QStringLiteral("tab %1\t%2\n")
                                 .arg(Escaped(pEditor->DocumentTitle(i)), Escaped(pEditor->GetPanel(i)->toPlainText()));
        std::fputs(Line.toUtf8().constData(), stdout);
    }
    std::printf("damaged %lld\n", static_cast<long long>(Scan.Damaged.size()));
    return 0;
}
} // namespace

int main(int argc, char** argv)
{
    QApplication App(argc, argv);
    QApplication::setApplicationName(QStringLiteral("ZamShaderEditor"));
    QApplication::setOrganizationName(QStringLiteral("Brenmoor Systems"));
    RegisterCompileMetaTypes();
    const QStringList Arguments{QStringLiteral("reliability_editor_host")};
    SEditorWindowOptions Options;
    Options.pArguments = &Arguments;
    Options.bWelcomeExample = false;
    ZamShaderEditorWindow Window(Options);
    Window.show();
    CDocumentBackups Backups(Window.GetEditor());
    const QString Mode = argc > 1 ? QString::fromLatin1(argv[1]) : QString();
    if (Mode == QLatin1String("type") && argc > 2)
        return Type(App, Window.GetEditor(), qBound(1, QByteArray(argv[2]).toInt(), 20));
    if (Mode == QLatin1String("restore"))
        return Restore(Window.GetEditor(), Backups);
    std::fprintf(stderr, "usage: %s type TABS | restore\n", argv[0]);
    return 2;
}
