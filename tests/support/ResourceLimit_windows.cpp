#include "support/ResourceLimit.h"

struct ResourceLimit::Earlier
{
};

bool ResourceLimit::isPossible()
{
    return false;
}

ResourceLimit::ResourceLimit(Of, quint64)
{
    qFatal("Windows has no such limits");
}

ResourceLimit::~ResourceLimit() = default;
