#include "support/LogCapture.h"
#include "support/ScriptedPrompts.h"
#include "support/TestMain.h"
#include "ui/WidgetPrompts.h"

#include <QApplication>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QTimer>

Q_DECLARE_METATYPE(Prompt::Kind)

class PromptsTest final : public QObject
{
    Q_OBJECT

private slots:
    void doesNotOpenTheSamePromptTwice();
    void differentPromptsMayBeOpenTogether();
    void limitsHowManyWait();
    void boxShowsTitleTextAndButtons_data();
    void boxShowsTitleTextAndButtons();
    void boxTakesServerTextsLiterally();
    void proposal_data();
    void proposal();
    void longProposalScrolls();
    void inputs();
    void windowThatGoesUnderABoxCancelsIt();
    void windowThatGoesUnderAnInputCancelsIt();
    void boxDoesNotHideWithTheWindow();
};

namespace {

const QString kTitle = QStringLiteral("Title");

/// Runs once the modal dialog is up.
template<typename Dialog, typename Action> void whenOpen(Action action)
{
    auto *timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, qApp, [timer, action] {
        if (auto *dialog = qobject_cast<Dialog *>(QApplication::activeModalWidget())) {
            timer->deleteLater();
            timer->stop();
            action(dialog);
        }
    });
    timer->start(1);
}

} // namespace

void PromptsTest::doesNotOpenTheSamePromptTwice()
{
    LogCapture log;
    ScriptedPrompts prompts;
    const QString text = QStringLiteral("Kicked");
    prompts.accept([&] {
        prompts.warning(kTitle, text);
        prompts.warning(kTitle, text);
    });
    prompts.warning(kTitle, text);
    QCOMPARE(prompts.seen().size(), 1);
    const QString refused = QStringLiteral("[Prompts] Not shown again: Title");
    QCOMPARE(log.lines(), QStringList({refused, refused}));

    prompts.accept();
    prompts.warning(kTitle, text);
    QCOMPARE(prompts.seen().size(), 2);
}

void PromptsTest::differentPromptsMayBeOpenTogether()
{
    ScriptedPrompts prompts;
    std::optional<QString> inner;
    prompts.enter(QStringLiteral("outer"), [&] { inner = prompts.text(kTitle, QStringLiteral("second")); });
    prompts.enter(QStringLiteral("inner"));
    const auto outer = prompts.text(kTitle, QStringLiteral("first"));
    QCOMPARE(outer, std::optional(QStringLiteral("outer")));
    QCOMPARE(inner, std::optional(QStringLiteral("inner")));
}

void PromptsTest::limitsHowManyWait()
{
    LogCapture log;
    ScriptedPrompts prompts;
    int number = 0;
    std::function<void()> another = [&] { prompts.warning(kTitle, QString::number(++number)); };
    for (int i = 0; i < Prompts::kMaxOpen; ++i)
        prompts.accept(another);
    another();
    QCOMPARE(prompts.seen().size(), Prompts::kMaxOpen);
    QCOMPARE(log.count(QStringLiteral("[Prompts] Not shown again:")), 1);
}

void PromptsTest::boxShowsTitleTextAndButtons_data()
{
    QTest::addColumn<Prompt::Kind>("kind");
    QTest::addColumn<int>("icon");
    QTest::addColumn<QString>("button"); // the one pressed
    QTest::addColumn<QString>("defaultButton");
    QTest::addColumn<bool>("accepted");
    const QString ok = QStringLiteral("OK");
    const QString yes = QStringLiteral("Yes");
    const QString no = QStringLiteral("No");
    using Kind = Prompt::Kind;
    QTest::newRow("information") << Kind::Information << int(QMessageBox::Information) << ok << ok << true;
    QTest::newRow("warning") << Kind::Warning << int(QMessageBox::Warning) << ok << ok << true;
    QTest::newRow("critical") << Kind::Critical << int(QMessageBox::Critical) << ok << ok << true;
    QTest::newRow("question, yes") << Kind::Question << int(QMessageBox::Question) << yes << no << true;
    QTest::newRow("question, no") << Kind::Question << int(QMessageBox::Question) << no << no << false;
    QTest::newRow("offer, yes") << Kind::WarningQuestion << int(QMessageBox::Warning) << yes << yes << true;
    QTest::newRow("offer, no") << Kind::WarningQuestion << int(QMessageBox::Warning) << no << yes << false;
}

void PromptsTest::boxShowsTitleTextAndButtons()
{
    QFETCH(Prompt::Kind, kind);
    QFETCH(int, icon);
    QFETCH(QString, button);
    QFETCH(QString, defaultButton);
    WidgetPrompts prompts;
    const QString text = QStringLiteral("Satu\n\ndua");
    QString seenTitle;
    QString seenText;
    QString seenDefault;
    int seenIcon = -1;
    whenOpen<QMessageBox>([&](QMessageBox *box) {
        seenTitle = box->windowTitle();
        seenText = box->text();
        seenIcon = box->icon();
        const auto buttons = box->buttons();
        for (QAbstractButton *candidate : buttons) {
            QString label = candidate->text();
            label.remove(QLatin1Char('&'));
            if (qobject_cast<QPushButton *>(candidate)->isDefault() || buttons.size() == 1)
                seenDefault = label;
            if (label == button)
                QTimer::singleShot(0, candidate, &QAbstractButton::click);
        }
    });
    bool accepted = true;
    switch (kind) {
    case Prompt::Kind::Information: prompts.information(kTitle, text); break;
    case Prompt::Kind::Warning: prompts.warning(kTitle, text); break;
    case Prompt::Kind::Critical: prompts.critical(kTitle, text); break;
    case Prompt::Kind::Question: accepted = prompts.confirm(kTitle, text); break;
    default: accepted = prompts.offer(kTitle, text); break;
    }
    QCOMPARE(seenTitle, kTitle);
    QCOMPARE(seenText, text);
    QCOMPARE(seenIcon, icon);
    QTEST(seenDefault, "defaultButton");
    QTEST(accepted, "accepted");
}

void PromptsTest::boxTakesServerTextsLiterally()
{
    WidgetPrompts prompts;
    Qt::TextFormat format = Qt::AutoText;
    whenOpen<QMessageBox>([&](QMessageBox *box) {
        format = box->textFormat();
        box->reject();
    });
    prompts.warning(kTitle, QStringLiteral("<b>not bold</b>"));
    QCOMPARE(format, Qt::PlainText);
}

void PromptsTest::proposal_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("the default button") << int(Qt::Key_Return) << true;
    QTest::newRow("Escape") << int(Qt::Key_Escape) << false;
}

void PromptsTest::proposal()
{
    QFETCH(int, key);
    WidgetPrompts prompts;
    QStringList labels;
    whenOpen<QMessageBox>([&](QMessageBox *box) {
        QTimer::singleShot(0, box, [box, key] { QTest::keyClick(box, Qt::Key(key)); }); // whatever fails here
        labels = QStringList{box->button(QMessageBox::Yes)->text(), box->button(QMessageBox::No)->text()};
        QCOMPARE(box->buttons().size(), 2);
        QCOMPARE(box->windowTitle(), kTitle);
        QCOMPARE(box->icon(), QMessageBox::Information);
        QCOMPARE(box->textFormat(), Qt::RichText);
        QCOMPARE(box->text(), QStringLiteral("<h3>Three</h3>"));
        QVERIFY(box->informativeText().contains(QStringLiteral("<b>Build:</b> 1\n\n&lt;b&gt;")));
    });
    QTEST(prompts.propose(kTitle, QStringLiteral("<h3>Three</h3>"), QStringLiteral("<b>Build:</b> 1\n\n&lt;b&gt;"),
                          QStringLiteral("Download"), QStringLiteral("Nanti")),
          "accepted");
    QCOMPARE(labels, QStringList({QStringLiteral("Download"), QStringLiteral("Nanti")}));
}

void PromptsTest::longProposalScrolls()
{
    WidgetPrompts prompts;
    int fewLines = 0;
    whenOpen<QMessageBox>([&fewLines](QMessageBox *box) {
        fewLines = box->findChild<QLabel *>(QStringLiteral("qt_msgbox_informativelabel"))->height();
        box->reject();
    });
    static_cast<void>(prompts.propose(kTitle, kTitle, QStringLiteral("a\nb\nc\nd"), kTitle, kTitle));
    int manyLines = 0;
    QSize size;
    QSize room;
    bool buttonIsInside = false;
    whenOpen<QMessageBox>([&](QMessageBox *box) {
        manyLines = box->findChild<QLabel *>(QStringLiteral("qt_msgbox_informativelabel"))->height();
        size = box->size();
        room = box->screen()->availableSize();
        const QAbstractButton *button = box->button(QMessageBox::Yes);
        buttonIsInside = box->rect().contains(QRect(button->mapTo(box, QPoint()), button->size()));
        box->reject();
    });
    static_cast<void>(prompts.propose(kTitle, kTitle, QString(200, QLatin1Char('x')) + QString(200, QLatin1Char('\n')),
                                      kTitle, kTitle));
    QVERIFY2(manyLines > 20 * fewLines, "every line end is shown");
    QVERIFY2(size.width() < room.width() && size.height() < room.height(), "the box is as high as the screen");
    QVERIFY(buttonIsInside);
}

void PromptsTest::inputs()
{
    WidgetPrompts prompts;
    whenOpen<QInputDialog>([](QInputDialog *dialog) {
        dialog->setTextValue(dialog->textValue() + QStringLiteral(".example"));
        dialog->accept();
    });
    QCOMPARE(prompts.text(kTitle, QStringLiteral("Server Address:"), QStringLiteral("radio")),
             std::optional(QStringLiteral("radio.example")));

    QLineEdit::EchoMode echo = QLineEdit::Normal;
    whenOpen<QInputDialog>([&echo](QInputDialog *dialog) {
        echo = dialog->textEchoMode();
        dialog->setTextValue(QStringLiteral("secret"));
        dialog->accept();
    });
    QCOMPARE(prompts.password(kTitle, QStringLiteral("Password:")), std::optional(QStringLiteral("secret")));
    QCOMPARE(echo, QLineEdit::Password);

    whenOpen<QInputDialog>([](QInputDialog *dialog) {
        QCOMPARE(dialog->intValue(), 8080);
        QCOMPARE(dialog->intMinimum(), 1);
        QCOMPARE(dialog->intMaximum(), 65535);
        dialog->setIntValue(9000);
        dialog->accept();
    });
    QCOMPARE(prompts.number(kTitle, QStringLiteral("Port:"), 8080, 1, 65535), std::optional(9000));

    whenOpen<QInputDialog>([](QInputDialog *dialog) {
        QVERIFY(!dialog->isComboBoxEditable());
        QCOMPARE(dialog->textValue(), QStringLiteral("Alpha"));
        dialog->setTextValue(QStringLiteral("Beta"));
        dialog->accept();
    });
    QCOMPARE(prompts.choice(kTitle, QStringLiteral("Select room:"), {QStringLiteral("Alpha"), QStringLiteral("Beta")}),
             std::optional(QStringLiteral("Beta")));

    whenOpen<QInputDialog>([](QInputDialog *dialog) { dialog->reject(); });
    QCOMPARE(prompts.text(kTitle, QStringLiteral("Callsign:")), std::optional<QString>());
}

void PromptsTest::windowThatGoesUnderABoxCancelsIt()
{
    auto *window = new QWidget;
    window->show();
    WidgetPrompts prompts;
    prompts.setWindow(window);
    whenOpen<QMessageBox>([window](QMessageBox *box) {
        QCOMPARE(box->parentWidget(), window);
        delete window;
    });
    QVERIFY(!prompts.confirm(kTitle, QStringLiteral("?")));
}

void PromptsTest::windowThatGoesUnderAnInputCancelsIt()
{
    auto *window = new QWidget;
    window->show();
    WidgetPrompts prompts;
    prompts.setWindow(window);
    whenOpen<QInputDialog>([window](QInputDialog *) { delete window; });
    QVERIFY(!prompts.password(kTitle, QStringLiteral("Password:")));
}

void PromptsTest::boxDoesNotHideWithTheWindow()
{
    QWidget window;
    WidgetPrompts prompts;
    prompts.setWindow(&window);
    whenOpen<QMessageBox>([](QMessageBox *box) {
        QVERIFY(!box->parentWidget());
        box->accept();
    });
    prompts.information(kTitle, QStringLiteral("Done"));
}

EVOX_TEST_MAIN(PromptsTest, QApplication)
#include "tst_prompts.moc"
