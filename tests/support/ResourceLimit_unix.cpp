#include "support/ResourceLimit.h"

#include <csignal>
#include <sys/resource.h>

struct ResourceLimit::Earlier
{
    decltype(RLIMIT_NOFILE) what;
    rlimit limit{};
    void (*onTooLarge)(int) = SIG_DFL;
};

bool ResourceLimit::isPossible()
{
    return true;
}

ResourceLimit::ResourceLimit(Of what, quint64 most)
    : m_earlier(std::make_unique<Earlier>())
{
    m_earlier->what = what == Of::OpenFiles ? RLIMIT_NOFILE : RLIMIT_FSIZE;
    m_earlier->onTooLarge = std::signal(SIGXFSZ, SIG_IGN); // else a file that is too large ends the process
    getrlimit(m_earlier->what, &m_earlier->limit);
    rlimit limit = m_earlier->limit;
    limit.rlim_cur = most;
    setrlimit(m_earlier->what, &limit);
}

ResourceLimit::~ResourceLimit()
{
    setrlimit(m_earlier->what, &m_earlier->limit);
    std::signal(SIGXFSZ, m_earlier->onTooLarge);
}
