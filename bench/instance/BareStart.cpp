// The baselines: a program that only builds its application object ("core" or "gui") and exits.

#include <QApplication>
#include <QCoreApplication>

#include <cstring>

int main(int argc, char** argv)
{
    if (argc > 1 && std::strcmp(argv[1], "gui") == 0)
    {
        QApplication App(argc, argv);
        return 0;
    }
    QCoreApplication App(argc, argv);
    return 0;
}
