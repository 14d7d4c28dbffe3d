// libFuzzer target for the decoding of backend answers: every answer the app reads goes through
// decodeRecord<T>. An input either decodes or throws DecodingFailure; anything else (a crash, a
// sanitizer report, another exception, a hang) is a finding. Not part of the test run:
//
//   cmake -S . -B build-fuzz -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DQF_FUZZ=ON \
//         -DQF_BUILD_TESTS=OFF -DQF_BUILD_BENCH=OFF
//   ninja -C build-fuzz fuzz_backend_answers
//   build-fuzz/tools/fuzz_backend_answers -max_total_time=300 -max_len=65536 CORPUS_DIR

#include "archive/mirror_page.h"
#include "backend/account_records.h"
#include "backend/archive_records.h"
#include "backend/json_reader.h"
#include "backend/social_records.h"
#include "backend/timeline_records.h"

#include <QByteArray>
#include <cstddef>
#include <cstdint>

namespace {

template <class T> void tryDecode(const QByteArray& body) {
    try {
        const T record = decodeRecord<T>(body);
        static_cast<void>(record);
    } catch (const DecodingFailure& failure) {
        // The expected way to refuse: its text must be there for the player.
        if (failure.text().isEmpty())
            __builtin_trap();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray body = QByteArray::fromRawData(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    tryDecode<SyncResponse>(body);
    tryDecode<MirrorPage>(body);
    tryDecode<AuthResponse>(body);
    tryDecode<RiotAccountsResponse>(body);
    tryDecode<RiotAccountResponse>(body);
    tryDecode<IngestLocalResponse>(body);
    tryDecode<StaticVersionResponse>(body);
    tryDecode<DuosResponse>(body);
    tryDecode<FriendStatsDto>(body);
    tryDecode<PlayerProfileDto>(body);
    tryDecode<TimelineSummaryDto>(body);
    return 0;
}
