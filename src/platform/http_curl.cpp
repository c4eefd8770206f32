// One transfer by libcurl. It is driven in small waits, so that the caller is asked in time even while
// nothing comes, or while a name is looked up.
#include <curl/curl.h>

#include <memory>

#include "platform/http.h"

namespace skl::platform {

namespace {

constexpr int waitMs = 50;
constexpr long lowestSuccess = 200, lowestOther = 300;

struct Transfer {
    const HttpRequest& request;
    CURL* easy;
    uint64_t received = 0;
};

size_t onBody(const char* data, size_t size, size_t count, void* user) {
    auto& transfer = *static_cast<Transfer*>(user);
    transfer.received += size * count;
    return transfer.request.body({data, size * count}) ? size * count : 0;
}

size_t onHeader(const char*, size_t size, size_t count, void* user) {
    static_cast<Transfer*>(user)->received += size * count;
    return size * count;
}

void setOptions(Transfer& transfer) {
    CURL* easy = transfer.easy;
    curl_easy_setopt(easy, CURLOPT_URL, transfer.request.url.c_str());
    curl_easy_setopt(easy, CURLOPT_USERAGENT, transfer.request.userAgent.c_str());
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, onBody);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &transfer);
    curl_easy_setopt(easy, CURLOPT_FAILONERROR, 1L);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, onHeader);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, &transfer);
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    // Of Windows alone: a list of withdrawn certificates that cannot be had is no reason to refuse a good
    // one.
    curl_easy_setopt(easy, CURLOPT_SSL_OPTIONS, static_cast<long>(CURLSSLOPT_REVOKE_BEST_EFFORT));
#if LIBCURL_VERSION_NUM >= 0x075700
    // An ended transfer does not wait for a name that is still being looked up.
    curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L);
#endif
}

/// How the transfer ended that the handle was added for.
HttpResult resultOf(CURLM* multi, CURL* easy) {
    HttpResult result;
    long status = 0;
    curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
    result.status = static_cast<int>(status);
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi, &left)) {
        if (message->msg != CURLMSG_DONE || message->easy_handle != easy) continue;
        const CURLcode code = message->data.result;
        result.whole = code == CURLE_OK && status >= lowestSuccess && status < lowestOther;
        if (code != CURLE_OK && code != CURLE_HTTP_RETURNED_ERROR) result.error = curl_easy_strerror(code);
    }
    return result;
}

HttpResult drive(CURLM* multi, Transfer& transfer) {
    for (int running = 1; running != 0;) {
        if (curl_multi_perform(multi, &running) != CURLM_OK) return {.error = "the transfer broke off"};
        if (running == 0) break;
        // What is left unfinished is no whole body.
        if (!transfer.request.goOn(transfer.received)) break;
        if (curl_multi_poll(multi, nullptr, 0, waitMs, nullptr) != CURLM_OK)
            return {.error = "waiting for the server failed"};
    }
    return resultOf(multi, transfer.easy);
}

}  // namespace

HttpResult httpGet(const HttpRequest& request) {
    static const bool ready = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    const HttpResult unable{.error = "the HTTP library cannot be used"};
    if (!ready) return unable;
    const std::unique_ptr<CURL, void (*)(CURL*)> easy(curl_easy_init(), curl_easy_cleanup);
    const std::unique_ptr<CURLM, CURLMcode (*)(CURLM*)> multi(curl_multi_init(), curl_multi_cleanup);
    if (!easy || !multi) return unable;
    Transfer transfer{request, easy.get()};
    setOptions(transfer);
    if (curl_multi_add_handle(multi.get(), easy.get()) != CURLM_OK) return unable;
    HttpResult result = drive(multi.get(), transfer);
    curl_multi_remove_handle(multi.get(), easy.get());
    return result;
}

}  // namespace skl::platform
