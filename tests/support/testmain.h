#pragma once

#include <QApplication>
#include <QLocale>
#include <QTest>

// A test program's main(): English (United States) dates and numbers whatever the machine's
// locale, and a real QApplication for the screens.
#define VANTREL_TEST_MAIN(TestClass)                                                     \
    int main(int argc, char **argv)                                                      \
    {                                                                                    \
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));           \
        QApplication app(argc, argv);                                                    \
        TestClass test;                                                                  \
        return QTest::qExec(&test, argc, argv);                                          \
    }
