#include "ui/admin/UserTableModel.h"

#include "ui/admin/ShownText.h"
#include "ui/admin/UserRecord.h"

#include <utility>

namespace {

using Column = UserTableModel::Column;

struct Title
{
    Column column;
    const char *text;
};

constexpr Title kTitles[] = {
    {Column::Id, "ID"},
    {Column::Callsign, "Callsign"},
    {Column::Name, "Name"},
    {Column::GatewayName, "Gateway Name"},
    {Column::Status, "Status"},
    {Column::Approved, "Approved"},
    {Column::Expiry, "Expiry"},
    {Column::Location, "Location"},
    {Column::LastLogin, "Last Login"},
    {Column::Device, "HWID"},
    {Column::Email, "Email"},
    {Column::WhatsApp, "WhatsApp"},
    {Column::Actions, "Actions"},
};

QString textOf(const QVariantMap &user, Column column)
{
    switch (column) {
    case Column::Id: return QString::number(UserRecord::id(user));
    case Column::Callsign: return UserRecord::callsign(user);
    case Column::Name: return UserRecord::name(user);
    case Column::GatewayName: {
        const QString gateway = UserRecord::gatewayName(user);
        return gateway.isEmpty() ? UserRecord::picName(user) : gateway;
    }
    case Column::Status: return UserRecord::status(user);
    case Column::Approved:
        return UserRecord::isApproved(user) ? QStringLiteral("Approved") : QStringLiteral("Not Approved");
    case Column::Expiry: return UserRecord::expiry(user);
    case Column::Location: return UserRecord::location(user);
    case Column::LastLogin: return UserRecord::lastLogin(user);
    case Column::Device: return UserRecord::deviceText(user);
    case Column::Email: return UserRecord::email(user);
    case Column::WhatsApp: return UserRecord::whatsapp(user);
    case Column::Actions: break;
    }
    return {};
}

QString cellText(const QVariantMap &user, Column column)
{
    return shownText(column == Column::LastLogin ? UserRecord::localLastLogin(user) : textOf(user, column));
}

} // namespace

UserTableModel::UserTableModel(QVector<Column> columns, QObject *parent)
    : QAbstractTableModel(parent)
    , m_columns(std::move(columns))
{
}

int UserTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_users.size();
}

int UserTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_columns.size();
}

QVariant UserTableModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Column column = m_columns.at(index.column());
    const QVariantMap &user = m_users.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        if (column == Column::Id)
            return m_ids.at(index.row());
        return cellText(user, column);
    case Qt::ToolTipRole: // tags in it would be obeyed
        return column == Column::Actions
                   ? QString()
                   : QLatin1String("<qt>") + cellText(user, column).toHtmlEscaped() + QLatin1String("</qt>");
    case Qt::TextAlignmentRole:
        return static_cast<int>(Qt::AlignVCenter | (column == Column::Id ? Qt::AlignRight : Qt::AlignLeft));
    default: return {};
    }
}

QVariant UserTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    const bool isTitle = role == Qt::DisplayRole || role == Qt::ToolTipRole; // a narrow column cuts its title
    if (orientation != Qt::Horizontal || !isTitle || section < 0 || section >= m_columns.size())
        return {};
    for (const Title &title : kTitles) {
        if (title.column == m_columns.at(section))
            return QString::fromLatin1(title.text);
    }
    return {};
}

bool UserTableModel::isLess(int column, int leftRow, int rightRow) const
{
    if (m_columns.at(column) == Column::Id)
        return m_ids.at(leftRow) < m_ids.at(rightRow);
    return textOf(m_users.at(leftRow), m_columns.at(column))
               .compare(textOf(m_users.at(rightRow), m_columns.at(column)), Qt::CaseInsensitive) < 0;
}

void UserTableModel::setUsers(const QList<QVariantMap> &users)
{
    beginResetModel();
    m_users = users;
    m_ids.clear();
    m_ids.reserve(users.size());
    for (const QVariantMap &user : users)
        m_ids.append(UserRecord::id(user));
    endResetModel();
}
