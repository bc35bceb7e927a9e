#pragma once

#include <QTest>

// Every test program ends with EVOX_TEST_MAIN(Class, QCoreApplication or QApplication) and its own .moc include.
#define EVOX_TEST_MAIN(TestClass, Application)                                                                         \
    int main(int argc, char *argv[])                                                                                   \
    {                                                                                                                  \
        Application app(argc, argv);                                                                                   \
        TestClass test;                                                                                                \
        return QTest::qExec(&test, argc, argv);                                                                        \
    }
