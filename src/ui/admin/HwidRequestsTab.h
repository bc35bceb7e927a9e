#pragma once

#include <QWidget>

#include <functional>

class HwidRequests;
class Prompts;
class QAction;
class QListWidget;

/// The open requests to log in from another device. Each is approved or dismissed, which ends it here; nothing tells
/// the server of a dismissal.
class HwidRequestsTab final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(HwidRequestsTab)

public:
    /// The requests are not the tab's own.
    HwidRequestsTab(HwidRequests &requests, Prompts &prompts, QWidget *parent = nullptr);

    [[nodiscard]] int count() const;
    /// Finds the id of a callsign for requests that came without one; 0 where there is none.
    void setIdLookup(std::function<int(const QString &callsign)> lookup) { m_idOf = std::move(lookup); }

signals:
    void commandRequested(const QString &line);
    void countChanged(int count);

private:
    [[nodiscard]] int chosenRow() const; ///< -1: none
    void createActions();
    void refill();
    void approve();
    void dismiss();
    void onSelectionChanged();

    HwidRequests &m_requests;
    Prompts &m_prompts;
    std::function<int(const QString &)> m_idOf;
    QListWidget *m_list;
    QAction *m_approve = nullptr;
    QAction *m_dismiss = nullptr;
};
