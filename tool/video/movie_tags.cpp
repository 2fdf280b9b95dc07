#include "tool/video/movie_tags.h"

#include <algorithm>
#include <cstring>
#include <string_view>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/avstring.h>
}

namespace ze::tool {
namespace {

constexpr const char* kMp4Keys[] = {
    "title",         "artist",      "album_artist", "composer",         "album",         "date",
    "comment",       "genre",       "copyright",    "grouping",         "lyrics",        "synopsis",
    "show",          "description", "episode_id",   "network",          "keywords",      "media_type",
    "hd_video",      "track",       "compilation",  "episode_sort",     "season_number", "encoder",
    "creation_time", "location",    "disc",         "gapless_playback", "encoding_tool"};
constexpr const char* kQuickTimeKeys[] = {"title",    "artist",    "album",        "date",  "comment",
                                          "genre",    "copyright", "make",         "model", "location",
                                          "keywords", "encoder",   "creation_time"};
constexpr size_t kLongestName = 255; // in QuickTime

bool isOneOf(const char* const* begin, const char* const* end, const char* key) {
    return std::any_of(begin, end, [key](const char* known) { return av_strcasecmp(known, key) == 0; });
}

// "title-eng" beside "title".
bool repeatsAnother(const AVDictionary* tags, const char* key) {
    const char* const dash = std::strrchr(key, '-');
    return dash && std::strlen(dash) == 4 &&
           av_dict_get(tags, std::string(key, dash).c_str(), nullptr, 0) != nullptr;
}

bool hasPlace(const AVFormatContext& file, const char* key) {
    const bool isMp4 = std::string_view(file.oformat->name) == "mp4";
    return isMp4 ? isOneOf(std::begin(kMp4Keys), std::end(kMp4Keys), key)
                 : isOneOf(std::begin(kQuickTimeKeys), std::end(kQuickTimeKeys), key);
}

} // namespace

bool isMovie(const AVFormatContext& file) {
    const std::string_view format = file.oformat->name;
    return format == "mp4" || format == "mov";
}

std::string keyWithoutPlace(const AVFormatContext& file) {
    if (!isMovie(file))
        return "";
    for (const AVDictionaryEntry* tag = nullptr;
         (tag = av_dict_get(file.metadata, "", tag, AV_DICT_IGNORE_SUFFIX)) != nullptr;)
        if (!hasPlace(file, tag->key) && !repeatsAnother(file.metadata, tag->key))
            return tag->key;
    return "";
}

void nameStreams(AVFormatContext& file) {
    if (!isMovie(file))
        return;
    for (unsigned i = 0; i < file.nb_streams; ++i) {
        AVDictionary** const tags = &file.streams[i]->metadata;
        const AVDictionaryEntry* const title = av_dict_get(*tags, "title", nullptr, 0);
        if (title && std::strlen(title->value) <= kLongestName)
            av_dict_set(tags, "handler_name", title->value, AV_DICT_DONT_OVERWRITE);
    }
}

} // namespace ze::tool
