#include "rules/TeskPolicyData.h"

TeskPolicyData::~TeskPolicyData() = default;
