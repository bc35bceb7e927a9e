// The least that a program with a main window and the multimedia library does before it is seen.

#include "FirstPaint.h"

#include <QApplication>
#include <QAudioDeviceInfo>
#include <QMainWindow>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QAudioDeviceInfo::defaultOutputDevice();
    QMainWindow window;
    FirstPaint paint;
    window.installEventFilter(&paint);
    window.resize(1000, 700);
    window.show();
    return QApplication::exec();
}
