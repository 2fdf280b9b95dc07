// Color grading through a look-up table.

#pragma once

#include "core/tools/ze_string.h"
#include "effects/lut/lut_tables.h"
#include "gl/frame_size.h"

#include <GLES2/gl2.h>

namespace ze {

/// Recolors a frame through the three-dimensional table of a LUT file, blended with the source. One draw per
/// frame. Construction makes no GL call and reads nothing: the first draw loads the file. Draw and destroy it
/// on the thread that has the core's context current.
class CLutEffect {
public:
    CLutEffect() = default;
    CLutEffect(const CLutEffect&) = delete;
    CLutEffect& operator=(const CLutEffect&) = delete;

    /// Deletes the texture and the programs.
    ~CLutEffect();

    /// Stores how much of the graded color is mixed in from the next draw on: meant for 0 to 1, not clamped.
    /// Stores the path of the LUT file too, unless there is one already: that one stays, and the log says
    /// "Lut path is already setted.", also when both are the same.
    void setParams(const CZeString& path, float intensity);

    /// Whether the intensity is >= 0.001, compared as doubles. Negative ones and NaN are not. Says nothing of
    /// the file: an effect whose table cannot be loaded, or changes no color, is active all the same.
    bool isActive() const;

    /// Draws `sourceTexture` through the table into `targetTexture`; two different RGBA textures of `size`.
    /// Alpha is kept, and scales the intensity. Needs the core's frame buffer bound and unit 0 active; leaves
    /// it without a color target and the table's texture bound to unit 1.
    ///
    /// False, with the reason in the log, when the table cannot be loaded or the program not be built;
    /// nothing is drawn then and the next call tries again. GL errors are logged and do not stop it.
    bool render(GLuint sourceTexture, FrameSize size, GLuint targetTexture);

private:
    /// For uniform levels.
    struct RatioProgram {
        GLuint name = 0;
        GLint posAttr = -1;
        GLint texCoordAttr = -1;
        GLint texelSize1D = -1;
        GLint rgbToTexCoordRatio = -1;
        GLint intensity = -1;
    };

    /// For all others.
    struct MappedProgram {
        GLuint name = 0;
        GLint posAttr = -1;
        GLint texCoordAttr = -1;
        GLint texelSize1D = -1;
        GLint texCoordLut1D = -1;
        GLint intensity = -1;
    };

    bool loadTable();
    bool prepareRatioProgram();
    bool prepareMappedProgram();
    void useRatioProgram() const;
    void useMappedProgram() const;

    RatioProgram m_ratio;
    MappedProgram m_mapped;
    GLuint m_lutTexture = 0; ///< RGB, N² × N; 0 until the file is loaded.
    CZeString m_path;
    float m_intensity = 0.0f;
    LutTables m_tables;
};

} // namespace ze
