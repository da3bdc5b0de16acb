#include "TeskPolicyData.h"

TeskPolicyData::~TeskPolicyData() = default;
