#include "platform/system/CritSec.h"

#include <system_error>

namespace marnoth {

#ifdef _WIN32

namespace {

/// About the time that an operation of moments takes: longer waits are slept through.
constexpr DWORD kSpins = 4000;

}  // namespace

CCritSec::CCritSec() {
    InitializeCriticalSectionAndSpinCount(&section_, kSpins);
}

CCritSec::~CCritSec() {
    DeleteCriticalSection(&section_);
}

#else

namespace {

int makeMutex(pthread_mutex_t& mutex, int protocol) {
    pthread_mutexattr_t attributes;
    if (const int error = pthread_mutexattr_init(&attributes)) return error;
    int error = pthread_mutexattr_setprotocol(&attributes, protocol);
    if (!error) error = pthread_mutex_init(&mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    return error;
}

void throwIf(int error) {
    if (error) throw std::system_error(error, std::generic_category());
}

}  // namespace

CCritSec::CCritSec() {
    if (makeMutex(mutex_, PTHREAD_PRIO_INHERIT) != 0) throwIf(makeMutex(mutex_, PTHREAD_PRIO_NONE));
}

CCritSec::~CCritSec() {
    pthread_mutex_destroy(&mutex_);
}

void CCritSec::lockFirst() {
    throwIf(pthread_mutex_lock(&mutex_));
    owner_.store(pthread_self(), std::memory_order_relaxed);
}

void CCritSec::unlockLast() {
    owner_.store(pthread_t{}, std::memory_order_relaxed);
    pthread_mutex_unlock(&mutex_);
}

#endif

}  // namespace marnoth
