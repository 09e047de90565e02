#include "app/help/ManualRenderer.h"

#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QTextStream>

// zam_manual_pdf MANUAL.md OUTPUT.pdf: typesets the user manual at build time.
int main(int argc, char** argv)
{
    QGuiApplication App(argc, argv);
    QTextStream Err(stderr);
    const QStringList Arguments = QGuiApplication::arguments();
    if (Arguments.size() != 3)
    {
        Err << "usage: zam_manual_pdf MANUAL.md OUTPUT.pdf\n";
        return 2;
    }
    QFile Source(Arguments[1]);
    if (!Source.open(QIODevice::ReadOnly))
    {
        Err << "zam_manual_pdf: cannot read " << Arguments[1] << ": " << Source.errorString() << "\n";
        return 1;
    }
    const QString Markdown = QString::fromUtf8(Source.readAll());
    const SManualPdf Pdf = RenderMarkdownToPdf(Markdown, QFileInfo(Arguments[1]).absolutePath(), Arguments[2]);
    if (Pdf.iPages == 0)
    {
        Err << "zam_manual_pdf: " << Arguments[2] << ": " << Pdf.Error << "\n";
        QFile::remove(Arguments[2]);
        return 1;
    }
    QTextStream(stdout) << "zam_manual_pdf: " << Pdf.iPages << " pages written to " << Arguments[2] << "\n";
    return 0;
}
