#include "kit/seat.h"

#include <locale.h>
#include <unistd.h>

bool seat::isMainThread() { return ::gettid() == ::getpid(); }

seat::PlainNumbers::PlainNumbers() {
    static const locale_t plain = ::newlocale(LC_ALL_MASK, "C", nullptr);
    m_previous = ::uselocale(plain);
}
seat::PlainNumbers::~PlainNumbers() { ::uselocale(static_cast<locale_t>(m_previous)); }
