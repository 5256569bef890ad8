// The management data store within one process: the last message of each kind, and who wants to hear
// of it.
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "platform/reference/reference_platform.h"
#include "platform/reference/whitelist_service.hh"

namespace {

struct Subscriber {
    std::string kind;
    vx_mom_callback callback;
    void *context;
};

struct DataStore {
    std::mutex mutex;
    std::map<std::string, std::vector<uint8_t>> messages;  // packed, by descriptor name
    // The platform's own services listen from the start.
    std::vector<Subscriber> subscribers = {
        {reference::whitelist_record_kind, reference::apply_whitelist_record, nullptr}};
};

DataStore &store() {
    static DataStore the_store;
    return the_store;
}

void tell(vx_mom_callback callback, void *context, int32_t command, void *result) {
    vx_mom_record record = {command, result, 0};
    callback(context, &record);
}

std::vector<uint8_t> pack(const ProtobufCMessage *message) {
    std::vector<uint8_t> packed(protobuf_c_message_get_packed_size(message));
    protobuf_c_message_pack(message, packed.data());
    return packed;
}

}  // namespace

int32_t vx_mom_subscribe(uint32_t, int32_t, const ProtobufCMessage *key, void *,
                         vx_mom_callback callback, void *context) {
    {
        std::lock_guard<std::mutex> lock(store().mutex);
        store().subscribers.push_back({key->descriptor->name, callback, context});
    }
    tell(callback, context, VX_MOM_SUBSCRIBED, nullptr);
    return 0;
}

int32_t vx_mom_hgetall(uint32_t, int32_t, const ProtobufCMessage *key, vx_mom_callback callback,
                       void *context) {
    std::vector<uint8_t> packed;
    {
        std::lock_guard<std::mutex> lock(store().mutex);
        const auto found = store().messages.find(key->descriptor->name);
        if (found == store().messages.end()) {
            return 0;
        }
        packed = found->second;
    }
    ProtobufCMessage *message =
        protobuf_c_message_unpack(key->descriptor, nullptr, packed.size(), packed.data());
    if (message == nullptr) {
        return -1;
    }
    tell(callback, context, VX_MOM_VALUE, message);
    protobuf_c_message_free_unpacked(message, nullptr);
    return 0;
}

int32_t reference_platform_publish(const ProtobufCMessage *message) {
    const std::string kind = message->descriptor->name;
    std::vector<Subscriber> listeners;
    {
        std::lock_guard<std::mutex> lock(store().mutex);
        store().messages[kind] = pack(message);
        for (const Subscriber &subscriber : store().subscribers) {
            if (subscriber.kind == kind) {
                listeners.push_back(subscriber);
            }
        }
    }
    for (const Subscriber &listener : listeners) {
        // The library only reads the message.
        tell(listener.callback, listener.context, VX_MOM_VALUE,
             const_cast<ProtobufCMessage *>(message));
    }
    return 0;
}

int32_t vx_mom_set(uint32_t, int32_t operation, const ProtobufCMessage *message, void *, void *) {
    constexpr int32_t write_record = 3;
    return operation == write_record ? reference_platform_publish(message) : -1;
}
