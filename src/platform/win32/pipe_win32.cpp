// The stream of the SimConnect client over a named pipe. Reads and writes are overlapped: one of each is
// under way at most, on buffers of the stream's own, so that a slow simulator never holds the caller.
#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "platform/text_conversion.h"
#include "platform/win32/handle_win32.h"
#include "platform/win32/net_win32.h"

namespace skl::net {

namespace {

using platform::Handle;

constexpr size_t bufferSize = 65536;

/// A read or a write that the system may still be at. Its memory must not move or go before it has ended.
class Transfer {
  public:
    enum class Progress { idle, underWay, done, broken };

    Transfer() : event_(::CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;

    std::array<std::byte, bufferSize> buffer;

    OVERLAPPED* begin() {
        overlapped_ = {};
        overlapped_.hEvent = event_.get();
        progress_ = Progress::underWay;
        return &overlapped_;
    }

    /// What has become of it; `count` gets the bytes of one that is done, once: then it is idle again.
    Progress look(const Handle& pipe, size_t& count) {
        if (progress_ != Progress::underWay) return progress_;
        DWORD moved = 0;
        const bool worked = ::GetOverlappedResult(pipe.get(), &overlapped_, &moved, FALSE);
        const DWORD error = worked ? ERROR_SUCCESS : ::GetLastError();
        if (error == ERROR_IO_INCOMPLETE) return progress_;
        // A pipe of messages hands out one that is longer than the buffer in parts.
        if (error != ERROR_SUCCESS && error != ERROR_MORE_DATA) return progress_ = Progress::broken;
        count = moved;
        progress_ = Progress::idle;
        return Progress::done;
    }

    void breakOff() { progress_ = Progress::broken; }

    void cancel(const Handle& pipe) {
        if (progress_ != Progress::underWay) return;
        ::CancelIoEx(pipe.get(), &overlapped_);
        DWORD moved = 0;
        ::GetOverlappedResult(pipe.get(), &overlapped_, &moved, TRUE);
        progress_ = Progress::broken;
    }

  private:
    Handle event_;
    OVERLAPPED overlapped_{};
    Progress progress_ = Progress::idle;
};

/// Whether a call on the pipe has worked or goes on behind the caller.
bool begun(BOOL result) {
    return result || ::GetLastError() == ERROR_IO_PENDING || ::GetLastError() == ERROR_MORE_DATA;
}

class PipeStream : public ByteStream {
  public:
    explicit PipeStream(const std::string& name) : name_(win32::utf8ToUtf16(name)) { tryOpen(); }

    ~PipeStream() override {
        reading_.cancel(pipe_);
        writing_.cancel(pipe_);
    }

    State state(Millis timeout) override {
        const auto deadline = std::chrono::steady_clock::now() + timeout;
        while (state_ == State::connecting) {
            tryOpen();
            const auto left = std::chrono::ceil<Millis>(deadline - std::chrono::steady_clock::now());
            if (state_ != State::connecting || left.count() <= 0) break;
            ::WaitNamedPipeW(wideName(), static_cast<DWORD>(left.count()));
        }
        return state_;
    }

    int64_t write(std::span<const std::byte> bytes) override {
        if (state_ != State::open) return state_ == State::failed ? -1 : 0;
        size_t written = 0;
        const auto progress = writing_.look(pipe_, written);
        if (progress == Transfer::Progress::broken) return -1;
        if (progress == Transfer::Progress::underWay || bytes.empty()) return 0;
        const size_t count = std::min(bytes.size(), writing_.buffer.size());
        std::memcpy(writing_.buffer.data(), bytes.data(), count);
        if (begun(::WriteFile(pipe_.get(), writing_.buffer.data(), static_cast<DWORD>(count), nullptr,
                              writing_.begin())))
            return static_cast<int64_t>(count);
        // What the other side said last can still be read.
        writing_.breakOff();
        return -1;
    }

    int64_t read(std::span<std::byte> buffer) override {
        if (state_ != State::open) return state_ == State::failed ? -1 : 0;
        if (given_ == read_ && !receive()) {
            state_ = State::failed;
            return -1;
        }
        const size_t count = std::min(buffer.size(), read_ - given_);
        std::memcpy(buffer.data(), reading_.buffer.data() + given_, count);
        given_ += count;
        return static_cast<int64_t>(count);
    }

  private:
    const wchar_t* wideName() const { return reinterpret_cast<const wchar_t*>(name_.c_str()); }

    void tryOpen() {
        // A server on this PC learns who we are, and may not act in our name.
        constexpr DWORD flags = FILE_FLAG_OVERLAPPED | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION;
        pipe_ = Handle(::CreateFileW(wideName(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                     flags, nullptr));
        if (pipe_)
            state_ = State::open;
        else
            state_ = ::GetLastError() == ERROR_PIPE_BUSY ? State::connecting : State::failed;
    }

    /// Takes what a read has brought, and begins one when none is under way. False at the end of the stream.
    bool receive() {
        given_ = read_ = 0;
        auto progress = reading_.look(pipe_, read_);
        if (progress == Transfer::Progress::idle) {
            if (!begun(::ReadFile(pipe_.get(), reading_.buffer.data(),
                                  static_cast<DWORD>(reading_.buffer.size()), nullptr, reading_.begin()))) {
                reading_.breakOff();
                return false;
            }
            progress = reading_.look(pipe_, read_);
        }
        return progress != Transfer::Progress::broken;
    }

    std::u16string name_;
    Handle pipe_;
    Transfer reading_, writing_;
    size_t read_ = 0, given_ = 0;  // bytes in reading_'s buffer, and how many of them are given out
    State state_ = State::connecting;
};

}  // namespace

std::unique_ptr<ByteStream> openPipe(const std::string& name) {
    auto stream = std::make_unique<PipeStream>(name);
    if (stream->state(Millis(0)) == ByteStream::State::failed) return nullptr;
    return stream;
}

}  // namespace skl::net
