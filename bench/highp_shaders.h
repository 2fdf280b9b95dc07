// What lower precisions in shaders are worth: the same programs in highp.

#pragma once

/// While one lives, programs that the library makes have highp in place of lowp and mediump, and in place of
/// the lowp that samplers have of themselves. Programs that exist keep theirs. One at a time.
class HighpShaders {
public:
    HighpShaders();
    ~HighpShaders();
    HighpShaders(const HighpShaders&) = delete;
    HighpShaders& operator=(const HighpShaders&) = delete;

    /// How many words have been replaced so far.
    int replacedWords() const;
};
