#pragma once

#include "archive/local_participant.h"
#include "archive/local_rank_snapshot.h"
#include "backend/account_records.h"

#include <QObject>
#include <QPointer>
#include <QSet>
#include <QString>
#include <QtQml/qqmlregistration.h>
#include <optional>
#include <vector>

#include "session/screen_model.h"

// What the sidebar and the toolbar show about the player: the account card (name, rank line,
// picture) and the archive count. Recomputed whenever the store or the accounts change.
class SidebarModel : public ScreenModel {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(QString accountName READ accountName NOTIFY changed)
    Q_PROPERTY(QString toolbarAccount READ toolbarAccount NOTIFY changed)
    Q_PROPERTY(QString rankLine READ rankLine NOTIFY changed)
    Q_PROPERTY(int archivedCount READ archivedCount NOTIFY changed)
    Q_PROPERTY(QString archivedText READ archivedText NOTIFY changed)
    Q_PROPERTY(int avatarIconId READ avatarIconId NOTIFY changed)
    Q_PROPERTY(QString avatarChampion READ avatarChampion NOTIFY changed)
    Q_PROPERTY(bool hasAccounts READ hasAccounts NOTIFY changed)
    Q_PROPERTY(QString syncLabel READ syncLabel NOTIFY syncingChanged)

public:
    explicit SidebarModel(QObject* parent = nullptr);

    [[nodiscard]] const QString& accountName() const { return m_accountName; }
    [[nodiscard]] const QString& toolbarAccount() const { return m_toolbarAccount; }
    [[nodiscard]] const QString& rankLine() const { return m_rankLine; }
    [[nodiscard]] int archivedCount() const { return m_archivedCount; }
    [[nodiscard]] QString archivedText() const {
        return QString::asprintf("%lld games archived", static_cast<long long>(m_archivedCount));
    }
    [[nodiscard]] int avatarIconId() const { return m_avatarIconId; }
    [[nodiscard]] const QString& avatarChampion() const { return m_avatarChampion; }
    [[nodiscard]] bool hasAccounts() const { return m_hasAccounts; }
    [[nodiscard]] QString syncLabel() const;

    // The pieces, each a pure function of what it reads.
    [[nodiscard]] static QString accountNameOf(const QList<RiotAccountDto>& accounts);
    [[nodiscard]] static QString toolbarAccountOf(const QList<RiotAccountDto>& accounts);
    // The newest solo-queue snapshot; failing that, the newest of any queue.
    [[nodiscard]] static const LocalRankSnapshot* soloOf(const std::vector<const LocalRankSnapshot*>& snapshots);
    [[nodiscard]] static QString rankLineOf(const LocalRankSnapshot* solo);
    [[nodiscard]] static QSet<QString> ownersOf(const QList<RiotAccountDto>& accounts);

Q_SIGNALS:
    void changed();
    void syncingChanged();

protected:
    void recompute() override;

private:
    QString m_accountName = QStringLiteral("Summoner");
    QString m_toolbarAccount = QStringLiteral("Account");
    QString m_rankLine = QStringLiteral("Unranked");
    int m_archivedCount = 0;
    int m_avatarIconId = -1;
    QString m_avatarChampion;
    bool m_hasAccounts = false;
};
