// The library's shader programs in highp, to compare with the lower precisions that they name.

#pragma once

/// Programs that the library makes while an object of this class exists have highp in place of lowp and
/// mediump, also in place of the lowp that samplers have by default. Older programs keep their precisions.
/// One object at a time.
class HighpShaders {
public:
    HighpShaders();
    ~HighpShaders();
    HighpShaders(const HighpShaders&) = delete;
    HighpShaders& operator=(const HighpShaders&) = delete;

    /// How many words this object has replaced so far.
    int replacedWords() const;
};
