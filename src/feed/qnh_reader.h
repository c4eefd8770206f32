// The reader of the weather stream: each datagram is a JSON object, of which the sea-level pressure alone is
// used.
#pragma once

#include <mutex>
#include <string_view>

#include "feed/udp_reader.h"

namespace skl {

class QnhReader : public UdpReader {
  public:
    QnhReader();

    /// One datagram. Logs what it cannot use, throws nothing.
    void processText(std::string_view datagram);
    /// All values of the pressure but the panel's back to 1013. Any thread.
    void resetValues();

  protected:
    void processPacket() override;
    void onStopped() override;

  private:
    void acceptQnh(int32_t value);

    std::mutex valuesLock_;  ///< the values change together, or a reset could leave them apart
    int32_t lastQnh_ = 1013;
};

/// The one reader of the process.
QnhReader& lf_qnhReader();

}  // namespace skl
