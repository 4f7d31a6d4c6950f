// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

#include <memory>
#include <mutex>

namespace Kestrune {

/// The cookies that several requests of one logical client share. Any thread.
class TCookieManagerComponent {
public:
    virtual ~TCookieManagerComponent() = default;
    TCookieManagerComponent(const TCookieManagerComponent&) = delete;
    TCookieManagerComponent& operator=(const TCookieManagerComponent&) = delete;

    /// Before a request: gives its handle (a CURL*) the cookies.
    virtual void Attach(void* handle) = 0;
    /// After it: takes the cookies over.
    virtual void Detach(void* handle) = 0;

protected:
    TCookieManagerComponent() = default;
};

/// Cookies as a list of texts, one a line of a cookie file (seven fields separated by tabs).
class TSecureBridge_CookieManager final : public TCookieManagerComponent {
public:
    void Attach(void* handle) override;
    void Detach(void* handle) override;
    QStringList Cookies() const;

private:
    mutable std::mutex FLock;
    QStringList FCookies;
};

/// Cookies in the client library's own store, shared while requests run.
class TD10_4_CookieManager final : public TCookieManagerComponent {
public:
    TD10_4_CookieManager();
    ~TD10_4_CookieManager() override;
    void Attach(void* handle) override;
    void Detach(void* handle) override;

private:
    struct TShare;
    std::unique_ptr<TShare> FShare;
};

} // namespace Kestrune
