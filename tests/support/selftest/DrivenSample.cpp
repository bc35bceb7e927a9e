// A program with something of everything that the driver has to cope with, which knows nothing of the driver.

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <cstdio>

namespace {

class SampleWindow final : public QWidget
{
public:
    SampleWindow()
    {
        setWindowTitle(QStringLiteral("Driven sample"));
        setMinimumSize(500, 400); // radio button and check box are much wider than their texts
        addInputs();
        addButtons();
        named(m_log, "logLabel");
    }

private:
    template<typename Widget> Widget *named(Widget *widget, const char *name)
    {
        widget->setObjectName(QLatin1String(name));
        m_layout->addWidget(widget);
        return widget;
    }
    QPushButton *button(const char *name, const QString &text)
    {
        auto *made = named(new QPushButton(text), name);
        connect(made, &QPushButton::clicked, m_log, [this, made] { m_log->setText(made->objectName()); });
        return made;
    }
    void addInputs()
    {
        auto *line = named(new QLineEdit, "lineEdit");
        connect(line, &QLineEdit::returnPressed, m_log, [this, line] { m_log->setText(line->text()); });
        named(new QLineEdit, "secretEdit")->setEchoMode(QLineEdit::Password);
        named(new QSpinBox, "numberSpin")->setRange(1, 65535);
        named(new QCheckBox(QStringLiteral("Yes")), "checkBox");
        named(new QRadioButton(QStringLiteral("One")), "radioButton");
        named(new QLabel(QStringLiteral("<b>bold</b> words")), "richLabel");
    }
    void addButtons()
    {
        button("plainButton", QStringLiteral("&Plain"));
        button("hiddenButton", QStringLiteral("Hidden"))->hide();
        button("disabledButton", QStringLiteral("Disabled"))->setEnabled(false);
        addMenu(button("menuButton", QStringLiteral("Menu")));
        connect(button("askButton", QStringLiteral("Ask")), &QPushButton::clicked, this, &SampleWindow::ask);
        connect(button("dialogButton", QStringLiteral("Dialog")), &QPushButton::clicked, this, &SampleWindow::dialog);
        connect(button("restartButton", QStringLiteral("Restart")), &QPushButton::clicked, this,
                &SampleWindow::restart);
    }
    void addMenu(QPushButton *button)
    {
        button->setContextMenuPolicy(Qt::ActionsContextMenu);
        for (const char *entry : {"&First", "Off"}) {
            auto *action = new QAction(QLatin1String(entry), button);
            action->setEnabled(action->text() != QLatin1String("Off"));
            connect(action, &QAction::triggered, m_log, [this, action] { m_log->setText(action->text()); });
            button->addAction(action);
        }
    }
    void ask()
    {
        QMessageBox box(QMessageBox::Question, QStringLiteral("Question"), QStringLiteral("Are you\nsure?"),
                        QMessageBox::Yes | QMessageBox::No, this);
        box.setInformativeText(QStringLiteral("It matters."));
        box.setDefaultButton(QMessageBox::No);
        m_log->setText(box.exec() == QMessageBox::Yes ? QStringLiteral("yes") : QStringLiteral("no"));
    }
    void dialog()
    {
        QDialog dialog(this);
        dialog.setWindowTitle(QStringLiteral("Nested"));
        auto *layout = new QVBoxLayout(&dialog);
        auto *edit = new QLineEdit;
        edit->setObjectName(QStringLiteral("nestedEdit"));
        auto *ask = new QPushButton(QStringLiteral("Ask"));
        ask->setObjectName(QStringLiteral("nestedAskButton"));
        connect(ask, &QPushButton::clicked, this, &SampleWindow::ask);
        layout->addWidget(edit);
        layout->addWidget(ask);
        dialog.exec();
        m_log->setText(edit->text());
    }
    void restart()
    {
        QProcess::startDetached(QApplication::applicationFilePath(), {QStringLiteral("again")});
        QApplication::quit();
    }

    QVBoxLayout *m_layout = new QVBoxLayout(this);
    QLabel *m_log = new QLabel(QStringLiteral("-"));
};

} // namespace

int main(int argc, char *argv[])
{
    const QApplication app(argc, argv);
    SampleWindow window;
    window.show();
    std::fprintf(stderr, "sample is %s\n", argc > 1 ? argv[1] : "first");
    return QApplication::exec();
}
