// Mirroring archives over HTTP with Boost.Beast, many users at once.

#include "sync_load_client.h"

// Boost 1.74's awaitable.hpp uses std::exchange without including its header.
#include <utility>

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <simdjson.h>

#include <algorithm>
#include <stdexcept>
#include <sys/resource.h>

namespace qf::bench {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
using asio::awaitable;
using asio::use_awaitable;
using Clock = std::chrono::steady_clock;

namespace {

constexpr size_t kBodyLimit = 512 * 1024 * 1024;

std::string percentEncoded(std::string_view text) {
    static constexpr char hex[] = "0123456789ABCDEF";
    std::string out;
    for (const char c : text) {
        const auto u = static_cast<unsigned char>(c);
        if ((u >= '0' && u <= '9') || (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || u == '-' || u == '.' ||
            u == '_' || u == '~') {
            out += c;
        } else {
            out += '%';
            out += hex[u >> 4];
            out += hex[u & 15];
        }
    }
    return out;
}

struct PageEnd {
    std::string nextCursor;
    bool hasMore = false;
};

// The two members the loop needs; On-Demand skips the arrays without building them. The body
// must have SIMDJSON_PADDING bytes of capacity past its end.
PageEnd readPageEnd(const std::string& body) {
    thread_local simdjson::ondemand::parser parser;
    simdjson::ondemand::document doc;
    if (parser.iterate(body.data(), body.size(), body.capacity()).get(doc) != simdjson::SUCCESS)
        throw std::runtime_error("a page is not JSON");
    PageEnd end;
    std::string_view cursor;
    if (doc.find_field_unordered("next_cursor").get_string().get(cursor) != simdjson::SUCCESS)
        throw std::runtime_error("a page has no next_cursor");
    end.nextCursor = std::string(cursor);
    if (doc.find_field_unordered("has_more").get_bool().get(end.hasMore) != simdjson::SUCCESS)
        throw std::runtime_error("a page has no has_more");
    return end;
}

struct JobState {
    std::vector<PageRecord> pages;
    Clock::time_point first = Clock::time_point::max();
    Clock::time_point last = Clock::time_point::min();
    std::string error;
    bool finished = false;
};

awaitable<void> mirror(const MirrorJob& job, const LoadOptions& options, JobState& state) {
    try {
        beast::tcp_stream stream(co_await asio::this_coro::executor);
        stream.expires_after(std::chrono::seconds(30));
        co_await stream.async_connect(asio::ip::tcp::endpoint(asio::ip::make_address_v4("127.0.0.1"), options.port),
                                      use_awaitable);
        stream.socket().set_option(asio::ip::tcp::no_delay(true));

        // Reads are at most 64 KB; a buffer with room for that many keeps them that large.
        beast::flat_buffer buffer;
        buffer.reserve(1 << 20);
        std::string cursor;
        // A body's memory is reused for the next page unless the body is kept: fresh megabytes
        // each page would cost the client more page faults than parsing costs.
        std::string spare;
        for (int page = 0; page < options.maxPagesPerUser; ++page) {
            http::request<http::empty_body> request;
            request.method(http::verb::get);
            request.version(11);
            if (options.source == PageSource::Api)
                request.target(page == 0 ? std::string("/api/sync") : "/api/sync?cursor=" + percentEncoded(cursor));
            else
                request.target("/" + pageFilePath(job.user, page));
            request.set(http::field::host, "127.0.0.1");
            if (!job.token.empty())
                request.set(http::field::authorization, "Bearer " + job.token);

            const Clock::time_point sent = Clock::now();
            stream.expires_after(std::chrono::seconds(120));
            co_await http::async_write(stream, request, use_awaitable);
            http::response_parser<http::string_body> parser;
            parser.body_limit(kBodyLimit);
            spare.clear();
            parser.get().body() = std::move(spare);
            co_await http::async_read_header(stream, buffer, parser, use_awaitable);
            // Room for the JSON parser's padding, made before the body arrives so it is never
            // copied to get it.
            if (const auto length = parser.content_length())
                parser.get().body().reserve(*length + simdjson::SIMDJSON_PADDING);
            co_await http::async_read(stream, buffer, parser, use_awaitable);
            const Clock::time_point done = Clock::now();

            http::response<http::string_body> response = parser.release();
            if (response.result() != http::status::ok)
                throw std::runtime_error("page " + std::to_string(page) + " answered " +
                                         std::to_string(response.result_int()) + ": " + response.body().substr(0, 200));
            std::string& body = response.body();
            if (body.capacity() < body.size() + simdjson::SIMDJSON_PADDING)
                body.reserve(body.size() + simdjson::SIMDJSON_PADDING);
            const PageEnd end = readPageEnd(body);

            PageRecord record;
            record.user = job.user;
            record.page = page;
            record.seconds = std::chrono::duration<double>(done - sent).count();
            record.bytes = body.size();
            if (!options.recordHeader.empty())
                record.header = std::string(response[options.recordHeader]);
            if (options.keepBodies)
                record.body = std::move(body);
            else
                spare = std::move(body);
            state.pages.push_back(std::move(record));
            state.first = std::min(state.first, sent);
            state.last = std::max(state.last, done);

            if (!end.hasMore)
                co_return;
            cursor = end.nextCursor;
        }
        throw std::runtime_error("still has_more after " + std::to_string(options.maxPagesPerUser) + " pages");
    } catch (const std::exception& e) {
        state.error = "user " + std::to_string(job.user) + ": " + e.what();
    }
}

} // namespace

LoadResult SyncLoadClient::run(const std::vector<MirrorJob>& jobs, const LoadOptions& options) {
    std::vector<JobState> states(jobs.size());
    size_t running = jobs.size();
    LoadResult result;
    // Declared after what the coroutines use, so their frames go first.
    asio::io_context io(1);

    asio::steady_timer deadline(io, options.deadline);
    deadline.async_wait([&](beast::error_code error) {
        if (!error) {
            result.timedOut = true;
            io.stop();
        }
    });
    for (size_t i = 0; i < jobs.size(); ++i)
        asio::co_spawn(
            io,
            [&, i]() -> awaitable<void> {
                co_await mirror(jobs[i], options, states[i]);
                states[i].finished = true;
                if (--running == 0)
                    deadline.cancel();
            },
            asio::detached);
    rusage before{};
    getrusage(RUSAGE_SELF, &before);
    io.run();
    rusage after{};
    getrusage(RUSAGE_SELF, &after);
    const auto cpu = [](const rusage& r) {
        return double(r.ru_utime.tv_sec + r.ru_stime.tv_sec) + double(r.ru_utime.tv_usec + r.ru_stime.tv_usec) / 1e6;
    };
    result.clientCpuSeconds = cpu(after) - cpu(before);

    Clock::time_point first = Clock::time_point::max();
    Clock::time_point last = Clock::time_point::min();
    for (JobState& s : states) {
        if (!s.error.empty() || !s.finished) {
            ++result.failedUsers;
            if (result.firstError.empty())
                result.firstError = s.error.empty() ? "the run ran out of time" : s.error;
        }
        first = std::min(first, s.first);
        last = std::max(last, s.last);
        for (PageRecord& p : s.pages)
            result.pages.push_back(std::move(p));
    }
    if (first < last)
        result.seconds = std::chrono::duration<double>(last - first).count();
    return result;
}

std::string pageFilePath(int user, int page) {
    return "pages/u" + std::to_string(user) + "/p" + std::to_string(page) + ".json";
}

} // namespace qf::bench
