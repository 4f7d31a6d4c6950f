// SPDX-License-Identifier: GPL-3.0-or-later
#include "uCookies.h"

#include <curl/curl.h>

#include <array>

namespace Kestrune {

namespace {

void LockShare(CURL*, curl_lock_data data, curl_lock_access, void* locks)
{
    (*static_cast<std::array<std::mutex, CURL_LOCK_DATA_LAST>*>(locks))[data].lock();
}

void UnlockShare(CURL*, curl_lock_data data, void* locks)
{
    (*static_cast<std::array<std::mutex, CURL_LOCK_DATA_LAST>*>(locks))[data].unlock();
}

} // namespace

void TSecureBridge_CookieManager::Attach(void* handle)
{
    const std::scoped_lock lock(FLock);
    for (const QString& cookie : FCookies)
        curl_easy_setopt(handle, CURLOPT_COOKIELIST, cookie.toUtf8().constData());
}

void TSecureBridge_CookieManager::Detach(void* handle)
{
    curl_slist* list = nullptr;
    if (curl_easy_getinfo(handle, CURLINFO_COOKIELIST, &list) != CURLE_OK)
        return;
    const std::scoped_lock lock(FLock);
    FCookies.clear();
    for (const curl_slist* item = list; item; item = item->next)
        FCookies.append(QString::fromUtf8(item->data));
    curl_slist_free_all(list);
}

QStringList TSecureBridge_CookieManager::Cookies() const
{
    const std::scoped_lock lock(FLock);
    return FCookies;
}

struct TD10_4_CookieManager::TShare {
    std::array<std::mutex, CURL_LOCK_DATA_LAST> Locks;
    CURLSH* Handle = nullptr;
};

TD10_4_CookieManager::TD10_4_CookieManager() : FShare(std::make_unique<TShare>())
{
    FShare->Handle = curl_share_init();
    curl_share_setopt(FShare->Handle, CURLSHOPT_LOCKFUNC, LockShare);
    curl_share_setopt(FShare->Handle, CURLSHOPT_UNLOCKFUNC, UnlockShare);
    curl_share_setopt(FShare->Handle, CURLSHOPT_USERDATA, &FShare->Locks);
    curl_share_setopt(FShare->Handle, CURLSHOPT_SHARE, CURL_LOCK_DATA_COOKIE);
}

TD10_4_CookieManager::~TD10_4_CookieManager() { curl_share_cleanup(FShare->Handle); }

void TD10_4_CookieManager::Attach(void* handle) { curl_easy_setopt(handle, CURLOPT_SHARE, FShare->Handle); }

void TD10_4_CookieManager::Detach(void* handle) { curl_easy_setopt(handle, CURLOPT_SHARE, nullptr); }

} // namespace Kestrune
