// The HTTP transport: one Asio io_context run by a pool of threads, one session per connection
// on its own strand, Beast's parser with limits, and the shutdown sequence.
//
// A session reads a request in two steps: it first waits for the request's first bytes (under
// the idle time-out between keep-alive requests), then for the whole request under the request
// time-out counted from those bytes (from the accept, for a connection's first request). That
// keeps slow senders from holding a connection while letting quiet keep-alive clients be.

#include "http/http_server.h"

#include <boost/asio/dispatch.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <thread>
#include <unordered_map>
#include <vector>

namespace qf {

namespace net = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
using tcp = net::ip::tcp;
using Clock = std::chrono::steady_clock;

namespace {

const char* const kServerName = "quillfern-server";
const char* const kUnavailable = "The server could not complete the request. Try again in a moment.";

// How long a closing connection keeps reading what the client still sends, so that the
// client sees our last answer instead of a reset.
constexpr auto kLinger = std::chrono::seconds(2);

bool isHttpError(const beast::error_code& ec) {
    return ec.category() == http::make_error_code(http::error::bad_target).category();
}

bool hasLineBreakOrNul(std::string_view text) {
    return text.find_first_of(std::string_view("\r\n\0", 3)) != text.npos;
}

class Session;

// What sessions share with the server: settings, routes and the list of open connections.
struct ServerCore {
    ServerCore(HttpServerOptions o, const Router& r) : options(std::move(o)), router(r) {}

    void add(const std::shared_ptr<Session>& session) {
        std::lock_guard lock(sessionsMutex);
        sessions.emplace(session.get(), session);
    }
    void remove(Session* session) {
        std::lock_guard lock(sessionsMutex);
        sessions.erase(session);
    }

    HttpServerOptions options;
    const Router& router;
    std::atomic<bool> stopping{false};
    std::mutex sessionsMutex;
    std::unordered_map<Session*, std::weak_ptr<Session>> sessions;
};

class Session : public std::enable_shared_from_this<Session> {
public:
    Session(tcp::socket&& socket, ServerCore& server) : m_stream(std::move(socket)), m_server(server) {
        beast::error_code ec;
        m_stream.socket().set_option(tcp::no_delay(true), ec);
        const auto endpoint = m_stream.socket().remote_endpoint(ec);
        if (!ec) {
            auto address = endpoint.address();
            // A dual-stack listener sees IPv4 peers as ::ffff:a.b.c.d; throttling wants one form.
            if (address.is_v6() && address.to_v6().is_v4_mapped())
                address = net::ip::make_address_v4(net::ip::v4_mapped, address.to_v6());
            m_remoteAddress = address.to_string();
        }
    }

    ~Session() { m_server.remove(this); }

    void start() {
        m_deadline = Clock::now() + std::chrono::seconds(m_server.options.headerTimeoutSeconds);
        net::dispatch(m_stream.get_executor(), [self = shared_from_this()] { self->waitForRequest(); });
    }

    // Runs on the session's strand during a stop: a connection waiting between requests has
    // nothing in flight and closes at once.
    void closeIfIdle() {
        if (m_idle)
            close();
    }

    [[nodiscard]] auto executor() { return m_stream.get_executor(); }

private:
    void waitForRequest() {
        if (m_server.stopping) {
            close();
            return;
        }
        m_parser.emplace();
        m_parser->body_limit(static_cast<std::uint64_t>(m_server.options.bodyLimit));
        m_parser->header_limit(m_server.options.headerLimit);
        if (m_buffer.size() > 0) { // pipelined: the next request has begun already
            m_deadline = Clock::now() + std::chrono::seconds(m_server.options.headerTimeoutSeconds);
            readHeader();
            return;
        }
        m_idle = true;
        if (m_first)
            m_stream.expires_at(m_deadline);
        else
            m_stream.expires_after(std::chrono::seconds(m_server.options.idleTimeoutSeconds));
        m_stream.async_read_some(
            m_buffer.prepare(4096),
            [self = shared_from_this()](beast::error_code ec, std::size_t n) { self->onFirstBytes(ec, n); });
    }

    void onFirstBytes(beast::error_code ec, std::size_t n) {
        m_idle = false;
        if (ec) { // silence, the client leaving, or a stop
            close();
            return;
        }
        m_buffer.commit(n);
        if (!m_first)
            m_deadline = Clock::now() + std::chrono::seconds(m_server.options.headerTimeoutSeconds);
        readHeader();
    }

    void readHeader() {
        m_stream.expires_at(m_deadline);
        http::async_read_header(m_stream, m_buffer, *m_parser,
                                [self = shared_from_this()](beast::error_code ec, std::size_t) { self->onHeader(ec); });
    }

    void onHeader(beast::error_code ec) {
        if (ec) {
            readFailed(ec);
            return;
        }
        if (m_parser->is_done()) {
            handle();
            return;
        }
        const auto& request = m_parser->get();
        if (request.version() >= 11 && beast::iequals(request[http::field::expect], "100-continue")) {
            auto interim = std::make_shared<http::response<http::empty_body>>(http::status::continue_, 11);
            http::async_write(m_stream, *interim,
                              [self = shared_from_this(), interim](beast::error_code ec, std::size_t) {
                                  if (ec)
                                      self->close();
                                  else
                                      self->readBody();
                              });
            return;
        }
        readBody();
    }

    void readBody() {
        m_stream.expires_at(m_deadline);
        http::async_read(m_stream, m_buffer, *m_parser, [self = shared_from_this()](beast::error_code ec, std::size_t) {
            if (ec)
                self->readFailed(ec);
            else
                self->handle();
        });
    }

    void readFailed(beast::error_code ec) {
        if (ec == http::error::body_limit) {
            refuse(413, "The request body is too large.");
        } else if (ec == http::error::header_limit) {
            refuse(431, "The request headers are too large.");
        } else if (isHttpError(ec) && ec != http::error::end_of_stream && ec != http::error::partial_message) {
            refuse(400, "Bad request.");
        } else {
            // A time-out (the stream has closed the socket already), a reset, or a client that
            // left in the middle of a request: nobody is listening for an answer.
            close();
        }
    }

    void handle() {
        m_first = false;
        auto& message = m_parser->get();
        const bool head = message.method() == http::verb::head;
        const bool keepAlive = message.keep_alive();
        const unsigned version = message.version();

        HttpResponse response;
        try {
            HttpRequest request;
            request.method = std::string(message.method_string());
            const std::string_view target(message.target().data(), message.target().size());
            const size_t mark = target.find('?');
            request.path = std::string(target.substr(0, mark));
            request.authorization = std::string(message[http::field::authorization]);
            request.contentType = std::string(message[http::field::content_type]);
            request.body = std::move(message.body());
            request.remoteAddress = m_remoteAddress;
            if (mark != std::string_view::npos && !parseQuery(target.substr(mark + 1), request.query))
                response = HttpResponse::text(400, "Bad query.");
            else
                response = m_server.router.dispatch(request);
        } catch (const std::exception& e) {
            std::fprintf(stderr, "quillfern-server: request failed: %s\n", e.what());
            response = HttpResponse::text(503, kUnavailable);
        }
        send(std::move(response), version, keepAlive && !m_server.stopping, head);
    }

    void refuse(int status, std::string text) {
        // The request was not read whole, so the connection's framing is lost: answer and close.
        send(HttpResponse::text(status, std::move(text)), m_parser ? m_parser->get().version() : 11, false, false);
    }

    void send(HttpResponse response, unsigned version, bool keepAlive, bool head) {
        if (response.status < 200 || response.status > 599) {
            std::fprintf(stderr, "quillfern-server: a handler answered with status %d\n", response.status);
            response = HttpResponse::text(503, kUnavailable);
        }
        if (version != 10)
            version = 11;
        auto message = std::make_shared<http::response<http::string_body>>();
        message->version(version);
        message->result(static_cast<unsigned>(response.status));
        message->set(http::field::server, kServerName);
        for (const auto& [name, value] : response.headers) {
            if (name.empty() || hasLineBreakOrNul(name) || hasLineBreakOrNul(value))
                continue;
            message->set(name, value);
        }
        message->keep_alive(keepAlive);
        const bool bodyless = response.status == 204 || response.status == 304;
        if (!bodyless) {
            message->set(http::field::content_type, response.contentType);
            message->body() = std::move(response.body);
        }
        message->prepare_payload();
        if (head)
            message->body().clear(); // Content-Length keeps the size a GET would have sent

        m_stream.expires_after(std::chrono::seconds(m_server.options.writeTimeoutSeconds));
        http::async_write(m_stream, *message,
                          [self = shared_from_this(), message, keepAlive](beast::error_code ec, std::size_t) {
                              if (ec)
                                  self->close();
                              else if (keepAlive)
                                  self->waitForRequest();
                              else
                                  self->lingeringClose();
                          });
    }

    void lingeringClose() {
        beast::error_code ec;
        m_stream.socket().shutdown(tcp::socket::shutdown_send, ec);
        if (ec) {
            close();
            return;
        }
        m_stream.expires_after(kLinger);
        drain();
    }

    void drain() {
        m_buffer.clear();
        m_stream.async_read_some(m_buffer.prepare(4096),
                                 [self = shared_from_this()](beast::error_code ec, std::size_t) {
                                     if (ec)
                                         self->close();
                                     else
                                         self->drain();
                                 });
    }

    void close() {
        beast::error_code ec;
        m_stream.socket().shutdown(tcp::socket::shutdown_both, ec);
        m_stream.close();
    }

    beast::tcp_stream m_stream;
    ServerCore& m_server;
    beast::flat_buffer m_buffer;
    std::optional<http::request_parser<http::string_body>> m_parser;
    std::string m_remoteAddress;
    Clock::time_point m_deadline;
    bool m_first = true; // no request answered yet on this connection
    bool m_idle = false; // waiting for the first byte of a request
};

} // namespace

struct HttpServer::Impl {
    Impl(HttpServerOptions o, const Router& r) : core(std::move(o), r), acceptor(net::make_strand(ioc)) {}

    void accept();
    void stop();

    // Declared before the io_context: sessions destroyed with its handlers still unregister.
    ServerCore core;
    uint16_t port = 0;
    net::io_context ioc;
    tcp::acceptor acceptor;
    std::optional<net::steady_timer> retryTimer;
    std::optional<net::signal_set> signals;
};

void HttpServer::Impl::accept() {
    acceptor.async_accept(net::make_strand(ioc), [this](beast::error_code ec, tcp::socket socket) {
        if (core.stopping || !acceptor.is_open())
            return;
        if (ec) {
            // Out of descriptors or a connection reset before it was accepted: try again a
            // moment later rather than spinning.
            retryTimer.emplace(acceptor.get_executor(), std::chrono::milliseconds(50));
            retryTimer->async_wait([this](beast::error_code waitError) {
                if (!waitError && !core.stopping)
                    accept();
            });
            return;
        }
        auto session = std::make_shared<Session>(std::move(socket), core);
        core.add(session);
        session->start();
        accept();
    });
}

void HttpServer::Impl::stop() {
    if (core.stopping.exchange(true))
        return;
    net::post(acceptor.get_executor(), [this] {
        beast::error_code ec;
        acceptor.close(ec);
        if (retryTimer)
            retryTimer->cancel();
        if (signals)
            signals->cancel(ec);
    });
    // Collected under the lock, used after it: the last owner of a session may be this list,
    // and a session's destructor takes the lock to leave the registry.
    std::vector<std::shared_ptr<Session>> open;
    {
        std::lock_guard lock(core.sessionsMutex);
        open.reserve(core.sessions.size());
        for (auto& [raw, weak] : core.sessions) {
            if (auto session = weak.lock())
                open.push_back(std::move(session));
        }
    }
    for (auto& session : open)
        net::post(session->executor(), [session] { session->closeIfIdle(); });
}

HttpServer::HttpServer(HttpServerOptions options, const Router& router)
    : m_impl(std::make_unique<Impl>(std::move(options), router)) {}

HttpServer::~HttpServer() = default;

void HttpServer::start() {
    const HttpServerOptions& options = m_impl->core.options;
    std::string host = options.host;
    if (host.size() >= 2 && host.front() == '[' && host.back() == ']')
        host = host.substr(1, host.size() - 2);
    const std::string where = options.host + ":" + std::to_string(options.port);

    std::vector<tcp::endpoint> endpoints;
    beast::error_code ec;
    const auto address = net::ip::make_address(host, ec);
    if (!ec) {
        endpoints.emplace_back(address, options.port);
    } else {
        tcp::resolver resolver(m_impl->ioc);
        const auto results = resolver.resolve(host, std::to_string(options.port), ec);
        if (ec)
            throw std::runtime_error("Cannot listen on " + where + ": " + ec.message());
        for (const auto& entry : results)
            endpoints.push_back(entry.endpoint());
    }

    auto& acceptor = m_impl->acceptor;
    for (const auto& endpoint : endpoints) {
        ec.clear();
        acceptor.open(endpoint.protocol(), ec);
        if (!ec)
            acceptor.set_option(net::socket_base::reuse_address(true), ec);
        if (!ec)
            acceptor.bind(endpoint, ec);
        if (!ec)
            acceptor.listen(net::socket_base::max_listen_connections, ec);
        if (!ec)
            break;
        beast::error_code ignored;
        acceptor.close(ignored);
    }
    if (ec || endpoints.empty())
        throw std::runtime_error("Cannot listen on " + where + ": " + (ec ? ec.message() : std::string("no address")));
    m_impl->port = acceptor.local_endpoint().port();
    m_impl->accept();
}

uint16_t HttpServer::port() const {
    return m_impl->port;
}

void HttpServer::run(bool handleSignals) {
    if (handleSignals) {
        m_impl->signals.emplace(m_impl->acceptor.get_executor(), SIGINT, SIGTERM);
        m_impl->signals->async_wait([this](beast::error_code ec, int) {
            if (!ec)
                m_impl->stop();
        });
    }
    const auto runLoop = [this] {
        while (true) {
            try {
                m_impl->ioc.run();
                return;
            } catch (const std::exception& e) {
                std::fprintf(stderr, "quillfern-server: %s\n", e.what());
            }
        }
    };
    std::vector<std::thread> pool;
    for (int i = 1; i < m_impl->core.options.threads; ++i)
        pool.emplace_back(runLoop);
    runLoop();
    for (auto& thread : pool)
        thread.join();
    m_impl->signals.reset();
}

void HttpServer::stop() {
    m_impl->stop();
}

} // namespace qf
