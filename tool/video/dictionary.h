// Options and metadata as FFmpeg takes them.

#pragma once

#include <string>

extern "C" {
#include <libavutil/dict.h>
}

namespace ze::tool {

/// Owns an `AVDictionary`.
class Dictionary {
public:
    Dictionary() = default;
    ~Dictionary() { av_dict_free(&m_entries); }
    Dictionary(const Dictionary&) = delete;
    Dictionary& operator=(const Dictionary&) = delete;

    void set(const std::string& key, const std::string& value) {
        av_dict_set(&m_entries, key.c_str(), value.c_str(), 0);
    }

    /// Empty where there is none.
    std::string valueOf(const char* key) const {
        const AVDictionaryEntry* const entry = av_dict_get(m_entries, key, nullptr, AV_DICT_MATCH_CASE);
        return entry ? entry->value : "";
    }

    /// For functions that take entries out; those that they do not know are left.
    AVDictionary** address() { return &m_entries; }

    /// The first key that is left; empty when none is.
    std::string firstKey() const {
        const AVDictionaryEntry* const entry = av_dict_get(m_entries, "", nullptr, AV_DICT_IGNORE_SUFFIX);
        return entry ? entry->key : "";
    }

private:
    AVDictionary* m_entries = nullptr;
};

} // namespace ze::tool
