#pragma once

#include <QDateTime>
#include <QWidget>

#include <functional>

class Prompts;
class QAction;
class QListWidget;
class QListWidgetItem;

/// Who asks to log in from another device, in the order of asking. Each request is approved or dismissed, which ends
/// it here; nothing tells the server of a dismissal.
class HwidRequestsTab final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(HwidRequestsTab)

public:
    static constexpr int kMostRequests = 500; ///< beyond them the oldest goes

    explicit HwidRequestsTab(Prompts &prompts, QWidget *parent = nullptr);

    [[nodiscard]] int count() const;
    /// Finds the id of a callsign for requests that came without one; 0 where there is none.
    void setIdLookup(std::function<int(const QString &callsign)> lookup) { m_idOf = std::move(lookup); }

public slots:
    /// @p details: callsign and user id with a ":" between them.
    void addRequest(const QString &details, const QDateTime &when);
    /// The device was reset: what this callsign asked for is done.
    void settleRequestsOf(const QString &callsign);

signals:
    void commandRequested(const QString &line);
    void countChanged(int count);
    /// The request is not listed any more.
    void requestSettled(const QString &details, const QDateTime &when);

private:
    [[nodiscard]] QListWidgetItem *selected() const;
    void createActions();
    void approve();
    void dismiss();
    void remove(QListWidgetItem *item);
    void onSelectionChanged();

    Prompts &m_prompts;
    std::function<int(const QString &)> m_idOf;
    QListWidget *m_list;
    QAction *m_approve = nullptr;
    QAction *m_dismiss = nullptr;
};
