// libFuzzer target for the player lines of the archive file: every player row a start reads goes
// through ParticipantLine::unpack, and a damaged or hand-edited file can hold any bytes there. An
// input must read without a crash, a sanitizer report or an exception, and what it reads must be
// stable: the row packed again reads back whole and packs to the same bytes. Not part of the test
// run:
//
//   cmake -S . -B build-fuzz -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DQF_FUZZ=ON \
//         -DQF_BUILD_TESTS=OFF -DQF_BUILD_BENCH=OFF
//   ninja -C build-fuzz fuzz_archive_lines
//   build-fuzz/tools/fuzz_archive_lines -max_total_time=300 -max_len=4096 CORPUS_DIR

#include "archive/archive_texts.h"
#include "archive/participant_line.h"
#include "archive/sqlite_database.h"

#include <QByteArray>
#include <QString>
#include <cstddef>
#include <cstdint>

namespace {

struct Archive {
    SqliteDatabase database{QStringLiteral(":memory:")};
    ArchiveTexts texts{database};

    Archive() {
        database.execute(QStringLiteral("CREATE TABLE texts (id INTEGER PRIMARY KEY, text TEXT NOT NULL)"));
        // A few texts of each kind, numbered as the app numbers them, and one the rows may name
        // by a number the table lacks.
        database.execute(QStringLiteral("INSERT INTO texts (id, text) VALUES (1, 'puuid-0001'), (2, 'Ahri'), "
                                        "(3, 'MIDDLE'), (4, 'Fjørd Çiçek'), (5, 'EUW'), (6, '')"));
        texts.load();
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Archive archive;
    ParticipantLine lines(archive.texts);
    const QByteArrayView input(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));

    bool damaged = false;
    const LocalParticipant read = lines.unpack(7, 11, input, &damaged);
    static_cast<void>(read.toDto());

    archive.database.execute(QStringLiteral("BEGIN"));
    const QByteArray once = lines.pack(read).toByteArray();
    bool damagedAgain = false;
    const LocalParticipant readAgain = lines.unpack(7, 11, once, &damagedAgain);
    const QByteArray twice = lines.pack(readAgain).toByteArray();
    archive.database.execute(QStringLiteral("ROLLBACK"));
    archive.texts.rolledBack();

    if (damagedAgain || once != twice)
        __builtin_trap();
    return 0;
}
