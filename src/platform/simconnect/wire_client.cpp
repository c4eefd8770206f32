// The life of a connection: opening, sending, receiving, its end. The requests are in wire_requests.cpp.
#include "platform/simconnect/wire_client.h"

#include <fmt/format.h>

#include "core/log.h"
#include "platform/simconnect/config.h"
#include "simlink/sim_ids.h"

namespace skl::wire {

namespace {

constexpr size_t chunkSize = 65536;
// What one dispatch reads at most, so that a flood of messages cannot keep the thread from seeing a stop.
constexpr int chunksADispatch = 64;
// Bytes already sent that the output buffer may carry along before they are dropped from its front.
constexpr size_t compactAt = 1u << 20;

}  // namespace

bool WireClient::open(std::string_view application, const std::function<bool()>& stop) {
    const Nanos deadline = gf_steadyNow() + openPatience;
    trouble_.clear();
    stream_ = connector_(trouble_);
    if (!stream_) return false;
    input_ = {};
    chunk_.resize(chunkSize);
    {
        std::lock_guard guard(outputLock_);
        output_.clear();
        sent_ = 0;
        sendId_ = 0;
        lastProgress_ = gf_steadyNow();
        MessageWriter(output_, Packet::open, 0)
            .text(application, 256)
            .u32(0)
            .bytes(std::as_bytes(std::span("\0HK", 4)))
            .u32(11)
            .u32(0)
            .u32(62651)
            .u32(3);
    }
    dead_ = quit_ = backlogged_ = false;
    const auto connected = [&] {
        return stop() || stream_->state(net::Millis(0)) != net::ByteStream::State::connecting;
    };
    const bool answered = gf_waitUntil(deadline, connected) && !stop() &&
                          stream_->state(net::Millis(0)) == net::ByteStream::State::open &&
                          waitForAnswer(stop, deadline);
    if (!answered) stream_.reset();
    return answered;
}

/// An exception is an answer too: it is how a simulator says that it does not know the version.
bool WireClient::waitForAnswer(const std::function<bool()>& stop, Nanos deadline) {
    gf_waitUntil(deadline, [&] {
        const bool ended = receiveSome() < 0 || !flush();
        return stop() || ended || input_.peek().has_value();
    });
    const auto first = input_.peek();
    if (!first || dead_ || stop()) return false;
    return messageId(*first) == sc::recvOpen || messageId(*first) == sc::recvException;
}

bool WireClient::close() {
    const bool sound = stream_ && !dead_;
    if (sound && !quit_) flush();
    stream_.reset();
    dead_ = true;
    return sound;
}

/// Reads what is there, up to one chunk. Gives the number of bytes, or -1 when the stream has ended.
int64_t WireClient::receiveSome() {
    const int64_t count = stream_->read(chunk_);
    if (count > 0) input_.append(std::span(chunk_).first(static_cast<size_t>(count)));
    return count;
}

void WireClient::deliver(const std::function<void(const SimRecv&)>& handler) {
    while (const auto message = input_.next()) {
        const uint32_t id = messageId(*message);
        if (id == sc::recvQuit) quit_ = true;
        handler({id, *message});
    }
}

/// Reads and delivers what has arrived. False when nothing more can come.
bool WireClient::receiveAll(const std::function<void(const SimRecv&)>& handler) {
    deliver(handler);
    for (int chunk = 0; chunk < chunksADispatch && !quit_; ++chunk) {
        const int64_t count = receiveSome();
        deliver(handler);
        if (input_.broken()) {
            gf_logError(fmt::format("SimConnect: a message of {} bytes cannot be", input_.nextSize()));
            return false;
        }
        if (count <= 0) return count == 0;
    }
    return true;
}

SimConnect::Dispatch WireClient::callDispatch(const std::function<void(const SimRecv&)>& handler) {
    if (quit_) return Dispatch::quit;
    if (dead_ || !stream_) return Dispatch::lost;
    bool alive = receiveAll(handler);
    if (alive && !quit_ && !flush()) {
        // A simulator that takes nothing any more may have said why.
        receiveAll(handler);
        alive = false;
    }
    if (quit_) return Dispatch::quit;
    if (!alive) dead_ = true;
    return dead_ ? Dispatch::lost : Dispatch::alive;
}

/// Sends what waits as far as the system takes it. False when the stream is dead.
bool WireClient::flush() {
    std::lock_guard guard(outputLock_);
    const Nanos now = gf_steadyNow();
    if (sent_ < output_.size()) {
        const int64_t taken = stream_->write(std::span(output_).subspan(sent_));
        if (taken < 0) return false;
        sent_ += static_cast<size_t>(taken);
        if (taken > 0) lastProgress_ = now;
    }
    backlogged_ = sent_ < output_.size();
    if (!backlogged_) {
        output_.clear();
        sent_ = 0;
        lastProgress_ = now;
        return true;
    }
    if (sent_ > compactAt) {
        output_.erase(output_.begin(), output_.begin() + static_cast<std::ptrdiff_t>(sent_));
        sent_ = 0;
    }
    if (now - lastProgress_ < outputPatience) return true;
    gf_logError("SimConnect: the simulator takes nothing any more");
    return false;
}

std::unique_ptr<SimConnect> makeClient() {
    return std::make_unique<WireClient>([](std::string& trouble) -> std::unique_ptr<net::ByteStream> {
        SimConnectAddress address;
        if (!lf_findSimulator(address, trouble)) return nullptr;
        if (!address.pipe.empty())
            if (auto stream = net::network().connectPipe(address.pipe)) return stream;
        return net::network().connectTcp(address.host, address.port, address.noDelay);
    });
}

}  // namespace skl::wire
