// One packet of a client: the checks that all share, and the way to the routine of its type.
#include <algorithm>
#include <utility>

#include "standin/simulator/simulator.h"

namespace simulator {

namespace {

constexpr std::uint32_t kTypeMask = 0x0FFFFFFF;
constexpr std::uint32_t kOldestVersion = 2;
constexpr std::uint32_t kNewestVersion = 6;

}  // namespace

void Simulator::handle(int connection, std::string_view packet) {
    auto& client = clients_[connection];
    Reader header(packet);
    header.u32();
    const auto version = header.u32();
    const auto type = header.u32() & kTypeMask;
    client.sendId = header.u32();
    if (!client.opened) {
        client.version = version;
    }
    ++counts_.packets;
    ++counts_.packetsInFrame;

    Exception exception = kNone;
    if (sizeOfPacket(type) == 0) {
        ++counts_.unknownPackets;
        exception = client.opened ? kError : kUnopened;
    } else if (type != kOpen && !client.opened) {
        exception = kUnopened;
    } else if (packet.size() < sizeOfPacket(type)) {
        exception = kSizeMismatch;
    } else if (type == kOpen) {
        exception = open(connection, client, version);
    } else if (client.version < versionOfPacket(type)) {
        exception = kVersionMismatch;
    } else {
        exception = serve(connection, client, type, packet);
    }
    if (exception != kNone) {
        except(connection, client, exception);
    }
}

Exception Simulator::serve(int connection, Client& client, std::uint32_t type, std::string_view packet) {
    Reader reader(packet, kClientHeader);
    switch (type) {
        case kMapClientEvent:
            return mapEvent(client, reader);
        case kTransmitEvent:
        case kTransmitEventEx1:
            return transmit(client, reader, type == kTransmitEventEx1);
        case kAddToGroup:
            return addToGroup(client, reader);
        case kGroupPriority:
            return setGroupPriority(client, reader);
        case kAddToDefinition:
            return addToDefinition(client, reader);
        case kClearDefinition:
            return client.definitions.erase(reader.u32()) > 0 ? kNone : kUnrecognizedId;
        case kRequestData:
            return requestData(connection, client, reader);
        case kRequestDataByType:
            return requestByType(connection, client, reader);
        case kSetData:
            return setData(client, reader);
        case kSubscribe:
            return subscribe(connection, client, reader);
        case kUnsubscribe:
            return client.subscriptions.erase(reader.u32()) > 0 ? kNone : kUnrecognizedId;
        case kCreateNonAtc:
        case kCreateNonAtcEx1:
            return create(connection, client, reader, type == kCreateNonAtcEx1);
        case kReleaseControl:
            return release(reader);
        case kRemoveObject:
            return remove(connection, reader);
        case kSetFlightPlan:
            return setFlightPlan(reader);
        default:
            return kError;
    }
}

Exception Simulator::open(int connection, Client& client, std::uint32_t version) {
    if (client.opened) {
        return kIllegalOperation;
    }
    if (version < kOldestVersion || version > kNewestVersion) {
        return kVersionMismatch;
    }
    client.opened = true;
    auto opened = message(version, kRecvOpen);
    opened.text(applicationName_, 256);
    if (options_.sim == 2024) {
        opened.u32(12).u32(2).u32(282174).u32(999).u32(12).u32(2).u32(0).u32(0);
    } else {
        opened.u32(11).u32(0).u32(282174).u32(999).u32(11).u32(0).u32(62651).u32(3);
    }
    opened.u32(0).u32(0);
    send(connection, opened.finish());
    return kNone;
}

void Simulator::reply(int connection, Client& client, std::string bytes) {
    // Once replies were held back, later ones queue behind them.
    if (lateReplies_ > 0 || !client.late.empty()) {
        const double due = client.late.empty() ? now_ : client.late.back().first;
        client.late.emplace_back(std::max(due, now_ + lateReplies_), std::move(bytes));
    } else {
        send(connection, bytes);
    }
}

void Simulator::except(int connection, Client& client, Exception exception) {
    ++counts_.exceptions[exception];
    reply(connection, client,
          message(client.version, kRecvException).u32(exception).u32(client.sendId).u32(kUnused).finish());
}

}  // namespace simulator
