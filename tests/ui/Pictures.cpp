// The pictures of the documentation: the window and its dialogs, in both themes, against a scripted server.
//
//   evox-pictures DIR

#include "SetupRig.h"
#include "WindowRig.h"
#include "net/TcpClient.h"
#include "support/FakeServer.h"
#include "support/Wait.h"
#include "ui/AboutDialog.h"
#include "ui/Theme.h"
#include "ui/account/ChangePasswordDialog.h"
#include "ui/account/EditProfileDialog.h"
#include "ui/account/ProfileDialog.h"
#include "ui/account/UserInfoDialog.h"
#include "ui/admin/AddGatewayDialog.h"
#include "ui/admin/AdminPanel.h"
#include "ui/admin/EditUserDialog.h"
#include "ui/settings/SerialConfigDialog.h"
#include "ui/settings/SettingsDialog.h"
#include "ui/setup/LoginDialog.h"

#include <QApplication>
#include <QDir>
#include <QListWidget>
#include <QPixmap>
#include <QTabWidget>
#include <QTextStream>

namespace {

constexpr std::chrono::milliseconds kLayout{200};
constexpr std::chrono::milliseconds kConnecting{5000};
constexpr int kFontSize = 9; // points
constexpr QSize kWindow(800, 740);
constexpr QSize kPanel(1120, 680);

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

class Album final
{
public:
    Album(const QString &folder, bool dark)
        : m_folder(folder)
        , m_theme(q(dark ? "dark" : "light"))
    {
    }

    [[nodiscard]] bool isComplete() const { return m_complete; }
    void giveUp() { m_complete = false; }

    /// Shows the widget long enough to be laid out and keeps its picture.
    void add(QWidget &widget, const QString &name)
    {
        widget.show();
        if (waitFor([] { return false; }, kLayout)) // the event loop lays out what was delayed
            return;
        const QString file = m_folder.filePath(name + QLatin1Char('-') + m_theme + q(".png"));
        m_complete = widget.grab().save(file) && m_complete;
        QTextStream(stdout) << file << Qt::endl;
    }

private:
    QDir m_folder;
    QString m_theme;
    bool m_complete = true;
};

QJsonObject operatorsValues(bool dark)
{
    return {{q("dark_theme"), dark},
            {q("callsign"), q("YH0GW")},
            {q("default_room"), q("== LOBBY ==")},
            {q("serial_port"), q("ttyUSB0")},
            {q("server_address"), q("radio.example")}};
}

void addSetup(Album *album)
{
    SetupRig rig;
    rig.open();
    rig.type("frequencyEdit", q("145.500 MHz"));
    rig.type("emailEdit", q("gw@klub.example"));
    rig.type("whatsappEdit", q("08123456789"));
    const auto turnTo = [&rig, album](SetupWizard::Page page, const char *name) {
        if (rig.goTo(page))
            album->add(rig.wizard(), q(name));
    };
    turnTo(SetupWizard::Welcome, "setup-welcome");
    turnTo(SetupWizard::Server, "setup-server");
    if (rig.goTo(SetupWizard::Pic))
        rig.wizard().back(); // the station as it is once the registry has answered
    album->add(rig.wizard(), q("setup-gateway"));
    turnTo(SetupWizard::Password, "setup-review");
    LoginDialog login(rig.endpoints.serverHost, rig.prompts);
    album->add(login, q("setup-login"));
}

bool addWindow(Album *album, bool dark)
{
    QJsonObject values = operatorsValues(dark);
    values.remove(q("server_address"));
    WindowRig rig(values);
    rig.server.answer(q("ROOMS"), {q("ROOMS|== LOBBY ==,Technical,Emergency")});
    if (!rig.openInRoom(q("== LOBBY ==")))
        return false;
    rig.server.send(q("SERVER_INFO|{\"total_rooms\":3,\"online_admins\":1,\"online_gateways\":4,\"online_users\":6,"
                      "\"encryption\":\"XSalsa20-Poly1305\",\"audio_sample_rate\":48000,\"audio_bitrate\":32000,"
                      "\"audio_preset\":\"standard\",\"audio_codec\":\"Opus\"}"));
    rig.server.send(q("USER_PROFILE|{\"user_id\":42,\"callsign\":\"YH0GW\",\"gateway_name\":\"RF-GW SINAR Bukit\","
                      "\"frequency\":\"145.500 MHz\",\"location\":\"Jl. Merdeka 1, Bandung\",\"name\":\"SARI CONTOH\","
                      "\"responsible_name\":\"SARI CONTOH\",\"responsible_callsign\":\"YB0ABC\","
                      "\"email\":\"gw@klub.example\",\"whatsapp\":\"08123456789\",\"status\":\"active\","
                      "\"approved\":true}"));
    rig.server.send(q("USER_LIST|== LOBBY ==|42,43,44|YH0GW,YH1LB,YB2XYZ|RF-GW SINAR Bukit,RF-GW SINAR Lembah,"
                      "Budi|RX,TX,RX|1,1,0|0,0,1"));
    rig.window().resize(kWindow);
    album->add(rig.window(), q("window"));
    return true;
}

void addSettings(Album *album, bool dark)
{
    const TestConfig config(operatorsValues(dark));
    ScriptedPrompts prompts;
    SettingsDialog settings(prompts);
    auto *tabs = settings.findChild<QTabWidget *>();
    const QStringList names{q("general"), q("server"), q("audio"), q("serial")};
    for (int i = 0; i < names.size(); ++i) {
        tabs->setCurrentIndex(i);
        album->add(settings, q("settings-") + names.at(i));
    }
    SerialConfigDialog serial;
    album->add(serial, q("serial-config"));
}

void addAccount(Album *album, bool dark)
{
    const TestConfig config(operatorsValues(dark));
    const QVariantMap record{{q("user_id"), 42},
                             {q("callsign"), q("YH0GW")},
                             {q("gateway_name"), q("RF-GW SINAR Bukit")},
                             {q("frequency"), q("145.500 MHz")},
                             {q("location"), q("Jl. Merdeka 1, Bandung")},
                             {q("name"), q("SARI CONTOH")},
                             {q("responsible_name"), q("SARI CONTOH")},
                             {q("responsible_callsign"), q("YB0ABC")},
                             {q("email"), q("gw@klub.example")},
                             {q("whatsapp"), q("08123456789")},
                             {q("status"), q("active")},
                             {q("approved"), true},
                             {q("license_expiry"), q("2035-12-31")},
                             {q("last_login"), q("2026-05-30T07:15:00")},
                             {q("registered_hwid"), q("0f3a9c")}};
    ProfileDialog profile(record, {q("0f3a9c"), true, true});
    album->add(profile, q("profile"));
    EditProfileDialog edit(record);
    album->add(edit, q("edit-profile"));
    ChangePasswordDialog password([] { return true; });
    album->add(password, q("change-password"));
    UserInfoDialog info(record);
    album->add(info, q("user-info"));
    AboutDialog about({QString::fromLatin1(qVersion()), q("libopus 1.3.1"), q("1.0.18")});
    album->add(about, q("about"));
}

QVariantMap account(int id, const QString &callsign, const QString &gateway, const QString &status, bool approved)
{
    return {{q("id"), id},
            {q("callsign"), callsign},
            {q("gateway_name"), gateway},
            {q("name"), q("SARI CONTOH")},
            {q("responsible_name"), q("SARI CONTOH")},
            {q("responsible_callsign"), q("YB0ABC")},
            {q("frequency"), q("145.500 MHz")},
            {q("location"), q("Jl. Merdeka 1, Bandung")},
            {q("email"), q("gw@klub.example")},
            {q("whatsapp"), q("08123456789")},
            {q("status"), status},
            {q("approved"), approved},
            {q("is_admin"), id == 1},
            {q("license_expiry"), q("2035-12-31")},
            {q("last_login"), q("2026-05-30T07:15:00")},
            {q("registered_hwid"), approved ? q("0f3a9c") : QString()}};
}

void addAdministration(Album *album, bool dark)
{
    const TestConfig config(operatorsValues(dark));
    ScriptedPrompts prompts;
    FakeServer server;
    TcpClient client;
    client.connectToServer(server.host(), server.port());
    if (!waitFor([&client] { return client.isConnected(); }, kConnecting)) {
        album->giveUp();
        return;
    }
    AdminPanel panel(&client, prompts);
    panel.resize(kPanel);
    const QList<QVariantMap> users{account(1, q("YB0ADM"), {}, q("active"), true),
                                   account(2, q("YH0GW"), q("RF-GW SINAR Bukit"), q("active"), true),
                                   account(3, q("YH1LB"), q("RF-GW SINAR Lembah"), q("suspended"), true),
                                   account(4, q("YH5XEE"), q("RF-GW SINAR Pantai"), q("pending"), false)};
    emit client.onlineUsersReceived({{{q("user_id"), 2},
                                      {q("callsign"), q("YH0GW")},
                                      {q("name"), q("RF-GW SINAR Bukit")},
                                      {q("room"), q("== LOBBY ==")}}});
    emit client.roomListReceived({q("== LOBBY =="), q("Technical"), q("Emergency")});
    emit client.serverInfoReceived({{q("room_limits"), QVariantMap{{q("== LOBBY =="), 0}, {q("Technical"), 25}}}});
    emit client.allUsersReceived(users);
    emit client.pendingUsersReceived({users.last()});
    emit client.audioQualityReceived({{q("preset"), q("standard")}});
    panel.addHwidRequest(q("YH1LB:3"), QDateTime({2026, 5, 30}, {7, 15}));
    panel.findChild<QListWidget *>(q("roomsList"))->setCurrentRow(1);
    auto *tabs = panel.findChild<QTabWidget *>();
    const QStringList names{q("online"), q("rooms"), q("users"), q("audio"), q("pending"), q("hwid")};
    for (int i = 0; i < names.size(); ++i) {
        tabs->setCurrentIndex(i);
        album->add(panel, q("admin-") + names.at(i));
    }
    EditUserDialog edit(users.at(1), prompts);
    album->add(edit, q("admin-edit-user"));
    AddGatewayDialog add;
    album->add(add, q("admin-add-gateway"));
}

bool makeAlbum(QApplication &app, const QString &folder, bool dark)
{
    Theme::apply(app, dark);
    Album album(folder, dark);
    addSetup(&album);
    const bool hadRoom = addWindow(&album, dark);
    Theme::apply(app, dark);
    addSettings(&album, dark);
    addAccount(&album, dark);
    addAdministration(&album, dark);
    return hadRoom && album.isComplete();
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    if (app.arguments().size() != 2 || !QDir().mkpath(app.arguments().at(1))) {
        QTextStream(stderr) << "evox-pictures DIR" << Qt::endl;
        return 1;
    }
    Theme::initResources();
    QFont font = QApplication::font();
    font.setPointSize(kFontSize);
    QApplication::setFont(font);
    const QString folder = app.arguments().at(1);
    return makeAlbum(app, folder, false) && makeAlbum(app, folder, true) ? 0 : 1;
}
