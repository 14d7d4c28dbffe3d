#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <functional>
#include <optional>

// Finding the running League client: its lockfile first, its command line as a fallback.
// Everything here is synchronous and never fails; "no client" is an empty optional.
namespace LcuDiscovery {

// The connection facts of one running client. The password changes with every launch of the
// client and is only ever held in memory for the request that needs it.
struct Lockfile {
    qint64 port = 0;
    QString password;
};

// Yields the full command line of every running process, one per line, or nothing when the
// listing cannot be run.
using ProcessLister = std::function<std::optional<QByteArray>()>;

// Where discovery looks. The application uses system(); tests aim it at temporary files and
// canned process lists.
struct Sources {
    QStringList lockfilePaths;
    ProcessLister processLister;

    [[nodiscard]] static Sources system();
};

// The places the client writes its lockfile, in the order they are tried.
[[nodiscard]] const QStringList& lockfilePaths();

// Runs "/bin/ps -A -o args" and returns its standard output.
[[nodiscard]] std::optional<QByteArray> listProcesses();

// A decimal integer with an optional sign and nothing else around it.
[[nodiscard]] std::optional<qint64> parsePort(QStringView text);

// name:process-id:port:password:protocol, with empty fields dropped.
[[nodiscard]] std::optional<Lockfile> parseLockfile(const QByteArray& contents);

// The value following key on a command line, up to the next whitespace, without quote characters.
[[nodiscard]] std::optional<QString> argumentValue(QStringView line, QStringView key);

// The first LeagueClientUx command line that carries both a port and a token.
[[nodiscard]] std::optional<Lockfile> parseProcessList(const QByteArray& output);

[[nodiscard]] std::optional<Lockfile> discover(const Sources& sources);

} // namespace LcuDiscovery
