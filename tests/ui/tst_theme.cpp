#include "support/LogCapture.h"
#include "support/Screenshots.h"
#include "support/TestMain.h"
#include "ui/Theme.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QFile>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QSlider>
#include <QSpinBox>
#include <QStatusBar>
#include <QTabWidget>
#include <QTableWidget>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <cmath>

using Theme::Role;

class ThemeTest final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void textCanBeRead_data();
    void textCanBeRead();
    void linesCanBeSeen_data();
    void linesCanBeSeen();
    void fillsRoles_data();
    void fillsRoles();
    void styleSheetHasNoUnknownRole_data();
    void styleSheetHasNoUnknownRole();
    void appliesPaletteAndStyleSheet();
    void textsTakeTheirRole_data();
    void textsTakeTheirRole();
    void goesBackToLight();
    void focusShows_data();
    void focusShows();
    void ping_data();
    void ping();
    void gallery_data();
    void gallery();
};

namespace {

double linear(double channel)
{
    return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &color)
{
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// 1 to 21, as the accessibility guidelines of the web define it.
double contrast(const QColor &a, const QColor &b)
{
    const double lighter = qMax(luminance(a), luminance(b));
    const double darker = qMin(luminance(a), luminance(b));
    return (lighter + 0.05) / (darker + 0.05);
}

void verifyContrast(Role front, Role back, bool dark, double least)
{
    const double ratio = contrast(Theme::color(front, dark), Theme::color(back, dark));
    QVERIFY2(ratio >= least, qPrintable(QStringLiteral("%1 on %2 is %3 to 1")
                                            .arg(Theme::name(front, dark), Theme::name(back, dark))
                                            .arg(ratio, 0, 'f', 2)));
}

void addPairs(const std::initializer_list<std::tuple<const char *, Role, Role>> &pairs)
{
    QTest::addColumn<int>("front");
    QTest::addColumn<int>("back");
    QTest::addColumn<bool>("dark");
    for (const auto &[name, front, back] : pairs) {
        for (const bool dark : {false, true})
            QTest::addRow("%s, %s", name, dark ? "dark" : "light")
                << static_cast<int>(front) << static_cast<int>(back) << dark;
    }
}

QWidget *createGallery(QWidget *parent)
{
    auto *page = new QWidget(parent);
    auto *column = new QVBoxLayout(page);
    auto *group = new QGroupBox(QStringLiteral("Group"), page);
    auto *inGroup = new QVBoxLayout(group);
    auto *checked = new QCheckBox(QStringLiteral("Checked"), group);
    checked->setChecked(true);
    auto *chosen = new QRadioButton(QStringLiteral("Chosen"), group);
    chosen->setChecked(true);
    for (QWidget *widget : std::initializer_list<QWidget *>{
             checked, new QCheckBox(QStringLiteral("Unchecked"), group), chosen,
             new QRadioButton(QStringLiteral("Not chosen"), group), new QLabel(QStringLiteral("A label"), group)})
        inGroup->addWidget(widget);
    column->addWidget(group);

    auto *inputs = new QHBoxLayout;
    auto *combo = new QComboBox(page);
    combo->addItems({QStringLiteral("Lobby"), QStringLiteral("Jakarta")});
    auto *disabledEdit = new QLineEdit(QStringLiteral("disabled"), page);
    disabledEdit->setEnabled(false);
    auto *hint = new QLineEdit(page);
    hint->setPlaceholderText(QStringLiteral("Search..."));
    for (QWidget *widget :
         std::initializer_list<QWidget *>{new QLineEdit(QStringLiteral("YB0ABC"), page), hint, disabledEdit,
                                          new QSpinBox(page), new QDateEdit(page), combo})
        inputs->addWidget(widget);
    column->addLayout(inputs);

    auto *buttons = new QHBoxLayout;
    auto *byDefault = new QPushButton(QStringLiteral("Default"), page);
    byDefault->setDefault(true);
    auto *disabled = new QPushButton(QStringLiteral("Disabled"), page);
    disabled->setEnabled(false);
    auto *progress = new QProgressBar(page);
    progress->setValue(60);
    auto *slider = new QSlider(Qt::Horizontal, page);
    slider->setValue(40);
    for (QWidget *widget : std::initializer_list<QWidget *>{new QPushButton(QStringLiteral("Button"), page), byDefault,
                                                            disabled, progress, slider})
        buttons->addWidget(widget);
    column->addLayout(buttons);

    auto *table = new QTableWidget(8, 3, page);
    table->setAlternatingRowColors(true);
    for (int row = 0; row < table->rowCount(); ++row) {
        for (int col = 0; col < table->columnCount(); ++col)
            table->setItem(row, col, new QTableWidgetItem(QStringLiteral("Cell %1/%2").arg(row).arg(col)));
    }
    table->selectRow(1);
    column->addWidget(table);
    column->addWidget(new QPlainTextEdit(QStringLiteral("Plain text"), page));
    return page;
}

} // namespace

void ThemeTest::cleanup()
{
    Theme::apply(*qApp, false);
}

void ThemeTest::textCanBeRead_data()
{
    addPairs({{"text on the window", Role::Text, Role::Ground},
              {"text in a field", Role::Text, Role::Field},
              {"text in every second row", Role::Text, Role::Alternate},
              {"text on a button", Role::Text, Role::Raised},
              {"text under the mouse", Role::Text, Role::Hover},
              {"hint on the window", Role::Dim, Role::Ground},
              {"hint in a field", Role::Dim, Role::Field},
              {"hint in every second row", Role::Dim, Role::Alternate},
              {"chosen row", Role::SelectionText, Role::Selection},
              {"station in a row", Role::SelectionText, Role::Field},
              {"station in every second row", Role::SelectionText, Role::Alternate},
              {"selected text", Role::AccentText, Role::Accent},
              {"link", Role::Accent, Role::Ground},
              {"title", Role::TitleText, Role::Title},
              {"button that begins", Role::OnMeaning, Role::Good},
              {"button that ends", Role::OnMeaning, Role::Danger},
              {"notice", Role::OnWarning, Role::Warning},
              {"server header", Role::HeaderText, Role::Server},
              {"gateway header", Role::HeaderText, Role::Gateway},
              {"audio header", Role::HeaderText, Role::Audio},
              {"facts", Role::ReadoutText, Role::Readout},
              {"brand", Role::Brand, Role::Ground}});
}

void ThemeTest::textCanBeRead()
{
    QFETCH(int, front);
    QFETCH(int, back);
    QFETCH(bool, dark);
    verifyContrast(static_cast<Role>(front), static_cast<Role>(back), dark, 4.5);
}

void ThemeTest::linesCanBeSeen_data()
{
    addPairs({{"focus ring on the window", Role::Focus, Role::Ground},
              {"focus ring round a field", Role::Focus, Role::Field},
              {"focus ring round a button", Role::Focus, Role::Raised},
              {"focus ring of a green button", Role::Text, Role::Good},
              {"focus ring of a red button", Role::Text, Role::Danger},
              {"disabled text on the window", Role::Disabled, Role::Ground},
              {"tick box", Role::Dim, Role::Field}});
}

void ThemeTest::linesCanBeSeen()
{
    QFETCH(int, front);
    QFETCH(int, back);
    QFETCH(bool, dark);
    verifyContrast(static_cast<Role>(front), static_cast<Role>(back), dark, 2.8);
}

void ThemeTest::fillsRoles_data()
{
    QTest::addColumn<QString>("given");
    QTest::addColumn<bool>("dark");
    QTest::addColumn<QString>("filled");
    const auto row = [](const char *name, const char *given, bool dark, const char *filled) {
        QTest::newRow(name) << QString::fromLatin1(given) << dark << QString::fromLatin1(filled);
    };
    row("nothing to fill", "color: #123456;", true, "color: #123456;");
    row("light", "background-color: @title;", false, "background-color: #012B61;");
    row("dark", "background-color: @title;", true, "background-color: #0D2137;");
    row("a role whose name begins as another's", "@title @titleText", false, "#012B61 #FFFFFF");
    row("twice", "@field;@field", true, "#1A1A1A;#1A1A1A");
    row("unknown stays", "a @nothing b", false, "a @nothing b");
    row("no name", "user@", false, "user@");
    row("empty", "", false, "");
}

void ThemeTest::fillsRoles()
{
    QFETCH(QString, given);
    QFETCH(bool, dark);
    QFETCH(QString, filled);
    QCOMPARE(Theme::filled(given, dark), filled);
}

void ThemeTest::styleSheetHasNoUnknownRole_data()
{
    QTest::addColumn<bool>("dark");
    QTest::newRow("light") << false;
    QTest::newRow("dark") << true;
}

void ThemeTest::styleSheetHasNoUnknownRole()
{
    QFETCH(bool, dark);
    LogCapture log; // a style sheet that does not parse is a warning
    Theme::apply(*qApp, dark);
    QString rules = qApp->styleSheet();
    QVERIFY(rules.contains(QLatin1String("QPushButton:focus")));
    rules.remove(QRegularExpression(QStringLiteral("/\\*.*?\\*/"), QRegularExpression::DotMatchesEverythingOption));
    QVERIFY2(!rules.contains(QLatin1Char('@')), "a role of the style sheet is not known");
    static const QRegularExpression url(QStringLiteral("url\\(([^)]*)\\)"));
    auto matches = url.globalMatch(rules);
    QVERIFY(matches.hasNext());
    while (matches.hasNext()) {
        const QString path = matches.next().captured(1);
        QVERIFY2(!QPixmap(path).isNull(), qPrintable(path));
    }
    QWidget widget; // parsing happens when the first widget is polished
    widget.ensurePolished();
}

void ThemeTest::appliesPaletteAndStyleSheet()
{
    Theme::apply(*qApp, true);
    QCOMPARE(QApplication::palette().color(QPalette::Window), QColor(QStringLiteral("#1E1E1E")));
    QCOMPARE(QApplication::palette().color(QPalette::Highlight), QColor(QStringLiteral("#0078D4")));
    QLineEdit edit;
    edit.resize(100, 40);
    const QImage dark = edit.grab().toImage();
    QCOMPARE(dark.pixelColor(50, 20), Theme::color(Role::Field, true));
}

void ThemeTest::textsTakeTheirRole_data()
{
    styleSheetHasNoUnknownRole_data();
}

void ThemeTest::textsTakeTheirRole()
{
    QFETCH(bool, dark);
    Theme::apply(*qApp, dark);
    QLineEdit edit;
    QLabel label;
    QSpinBox number;
    edit.ensurePolished();
    label.ensurePolished();
    number.ensurePolished();
    const QColor text = Theme::color(Role::Text, dark);
    QCOMPARE(edit.palette().color(QPalette::Active, QPalette::Text), text);
    QCOMPARE(edit.palette().color(QPalette::Active, QPalette::PlaceholderText), Theme::color(Role::Dim, dark));
    QCOMPARE(edit.palette().color(QPalette::Disabled, QPalette::Text), Theme::color(Role::Disabled, dark));
    QCOMPARE(number.palette().color(QPalette::Active, QPalette::Text), text);
    QCOMPARE(label.palette().color(QPalette::Active, QPalette::WindowText), text);
}

void ThemeTest::goesBackToLight()
{
    Theme::apply(*qApp, false);
    const QString light = qApp->styleSheet();
    Theme::apply(*qApp, true);
    QVERIFY(qApp->styleSheet() != light);
    Theme::apply(*qApp, false);
    QCOMPARE(qApp->styleSheet(), light);
    QCOMPARE(QApplication::palette().color(QPalette::Window), Theme::color(Role::Ground, false));
}

void ThemeTest::focusShows_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("dark");
    for (const char *kind : {"QPushButton", "QLineEdit", "QComboBox", "QListWidget", "QCheckBox", "QSpinBox"}) {
        for (const bool dark : {false, true})
            QTest::addRow("%s, %s", kind, dark ? "dark" : "light") << QString::fromLatin1(kind) << dark;
    }
}

void ThemeTest::focusShows()
{
    QFETCH(QString, kind);
    QFETCH(bool, dark);
    Theme::apply(*qApp, dark);
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    QList<QWidget *> all{new QPushButton, new QLineEdit, new QComboBox, new QListWidget, new QCheckBox, new QSpinBox};
    QWidget *tested = nullptr;
    for (QWidget *widget : qAsConst(all)) {
        layout->addWidget(widget);
        if (kind == QLatin1String(widget->metaObject()->className()))
            tested = widget;
    }
    QVERIFY(tested);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    all.at(all.first() == tested ? 1 : 0)->setFocus(Qt::TabFocusReason);
    const auto ringPixels = [&] {
        const QImage picture = tested->grab().toImage();
        const QColor ring = Theme::color(Role::Focus, dark);
        int count = 0;
        for (int x = 0; x < picture.width(); ++x)
            count += picture.pixelColor(x, 0) == ring ? 1 : 0;
        return count;
    };
    QCOMPARE(ringPixels(), 0);
    tested->setFocus(Qt::TabFocusReason);
    QTRY_VERIFY(tested->hasFocus());
    QVERIFY2(ringPixels() > tested->width() / 2, "no ring along the upper edge");
}

void ThemeTest::ping_data()
{
    QTest::addColumn<float>("latency");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, float latency, const char *color, const char *figure) {
        QTest::newRow(name) << latency
                            << QStringLiteral("<span style='color:%1;'>PING: %2 ms</span>")
                                   .arg(QLatin1String(color), QLatin1String(figure));
    };
    row("0", 0.0F, "#4CAF50", "0.0");
    row("12.34", 12.34F, "#4CAF50", "12.3");
    row("49.9", 49.9F, "#4CAF50", "49.9");
    row("exactly 50", 50.0F, "#FFC107", "50.0");
    row("99.9", 99.9F, "#FFC107", "99.9");
    row("exactly 100", 100.0F, "#F44336", "100.0");
    row("a minute", 60000.0F, "#F44336", "60000.0");
}

void ThemeTest::ping()
{
    QFETCH(float, latency);
    QFETCH(QString, text);
    QCOMPARE(Theme::pingText(latency), text);
}

void ThemeTest::gallery_data()
{
    styleSheetHasNoUnknownRole_data();
}

void ThemeTest::gallery()
{
    QFETCH(bool, dark);
    QApplication::setFont(QFont(QApplication::font().family(), 9)); // a desktop\'s; this platform\'s own is a large one
    Theme::apply(*qApp, dark);
    QMainWindow window;
    window.menuBar()->addMenu(QStringLiteral("&File"))->addAction(QStringLiteral("Settings"));
    window.menuBar()->addMenu(QStringLiteral("&View"));
    QToolBar *bar = window.addToolBar(QStringLiteral("Main Toolbar"));
    bar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    const auto add = [bar](const char *icon, const char *text) {
        return bar->addAction(QIcon(QStringLiteral(":/icons/") + QLatin1String(icon)), QLatin1String(text));
    };
    add("connection_on", "Connected");
    add("serial_off", "Serial")->setEnabled(false);
    add("ptt_on", "PTT");
    QAction *mic = add("mic_off", "MIC");
    mic->setCheckable(true);
    mic->setChecked(true);
    add("speaker_on", "SPK");
    add("join_room", "JOIN");
    add("leave_room", "LEAVE");
    add("settings", "Settings");
    auto *tabs = new QTabWidget(&window);
    tabs->addTab(createGallery(tabs), QStringLiteral("First"));
    tabs->addTab(new QWidget(tabs), QStringLiteral("Second"));
    window.setCentralWidget(tabs);
    window.statusBar()->showMessage(QStringLiteral("Ready"));
    window.resize(760, 640);
    QVERIFY(!Screenshots::save(window, dark ? QStringLiteral("theme-dark") : QStringLiteral("theme-light")).isNull());
}

EVOX_TEST_MAIN(ThemeTest, QApplication)
#include "tst_theme.moc"
