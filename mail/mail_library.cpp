#include "mail/mail_library.h"

#include <gmime/gmime.h>

#include <mutex>

namespace tnefmail {

namespace {

std::mutex users_lock;
int users = 0;

}  // namespace

MailLibrary::MailLibrary() {
    std::lock_guard<std::mutex> hold(users_lock);
    if (users++ == 0) g_mime_init();
}

MailLibrary::~MailLibrary() {
    std::lock_guard<std::mutex> hold(users_lock);
    if (--users == 0) g_mime_shutdown();
}

}  // namespace tnefmail
