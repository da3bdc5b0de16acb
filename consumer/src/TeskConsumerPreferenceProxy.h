#ifndef TESK_CONSUMER_PREFERENCE_PROXY_H
#define TESK_CONSUMER_PREFERENCE_PROXY_H

#include <string>

/// The application's persistent preferences, by type. A failure of the store is logged and answered with a fallback.
class TeskConsumerPreferenceProxy {
public:
    TeskConsumerPreferenceProxy() = default;
    virtual ~TeskConsumerPreferenceProxy();

    TeskConsumerPreferenceProxy(const TeskConsumerPreferenceProxy&) = delete;
    TeskConsumerPreferenceProxy& operator=(const TeskConsumerPreferenceProxy&) = delete;

    /// Stores an int, bool, double or const char*.
    template <class Value>
    void set(const std::string& key, Value value);

    /// Stores a text.
    void set(const char* key, const char* value);

    /// The int, bool, double or std::string of a key; 0, true, 0.0 or an empty text when it cannot be read.
    template <class Value>
    Value get(const std::string& key);

    /// Whether the key has a value; false when that cannot be told.
    bool exist(const std::string& key);

    /// Remembers the account whose password rules are being enforced, 0 for none. Returns 0 or -1.
    static int setPwdEnforcingAccountId(int accountId);

    /// The account whose password rules are being enforced, 0 for none; -1 when it cannot be read.
    static int getPwdEnforcingAccountId();

    /// Gives the account id its first value, 0, unless it has one.
    static void init();
};

/// Where the id of the account whose password rules are being enforced is kept.
extern const char TESK_PWD_ENFORCE_ACCOUNT_KEY[];

template <>
void TeskConsumerPreferenceProxy::set<int>(const std::string& key, int value);
template <>
void TeskConsumerPreferenceProxy::set<bool>(const std::string& key, bool value);
template <>
void TeskConsumerPreferenceProxy::set<double>(const std::string& key, double value);
template <>
void TeskConsumerPreferenceProxy::set<const char*>(const std::string& key, const char* value);

template <>
int TeskConsumerPreferenceProxy::get<int>(const std::string& key);
template <>
bool TeskConsumerPreferenceProxy::get<bool>(const std::string& key);
template <>
double TeskConsumerPreferenceProxy::get<double>(const std::string& key);
template <>
std::string TeskConsumerPreferenceProxy::get<std::string>(const std::string& key);

#endif
