// The two programs of the beauty effect, as GLSL ES 1.00.
//
// Both filters take seven taps along one axis, three on each side of the center:
//
//     blurTexCoords   [0]   [1]   [2]   [3]   [4]   [5]   [6]
//     distance         -3    -2    -1     0    +1    +2    +3      steps of blurTexelSampleStep
//
// A tap weighs by its distance (gaussianWeight) and by how near its luma is to the center's: with a
// distanceNormalizationFactor of 4 a luma difference of 0.25 or more leaves it out. The center always counts.

#pragma once

namespace ze {

inline constexpr char kBlurVertexShader[] = R"glsl(
attribute highp vec2 posAttr;
attribute highp vec2 texCoordAttr;

uniform highp vec2 blurTexelSampleStep;

const lowp int GAUSSIAN_SAMPLES = 7;

varying highp vec2 blurTexCoords[GAUSSIAN_SAMPLES];

void main()
{
    gl_Position = vec4(posAttr, 0.0, 1.0);
    for (int i = 0; i < GAUSSIAN_SAMPLES; i++) {
        lowp int sampleDistance = i - (GAUSSIAN_SAMPLES - 1) / 2;
        blurTexCoords[i] = texCoordAttr + float(sampleDistance) * blurTexelSampleStep;
    }
}
)glsl";

inline constexpr char kBlurFragmentShader[] = R"glsl(
const lowp int GAUSSIAN_SAMPLES = 7;
const lowp vec4 lumaCoeff = vec4(0.2126, 0.7152, 0.0722, 0.0); // BT.709

varying highp vec2 blurTexCoords[GAUSSIAN_SAMPLES];

uniform sampler2D sampler;
uniform mediump float distanceNormalizationFactor;
uniform lowp float gaussianWeight[GAUSSIAN_SAMPLES];

void main()
{
    lowp vec4 centralColor = texture2D(sampler, blurTexCoords[3]);
    lowp float centralColorLuma = dot(centralColor, lumaCoeff);
    lowp float blurWeightSum = gaussianWeight[3];
    lowp vec4 blurColorSum = centralColor * gaussianWeight[3];

    lowp vec4 sampleColor;
    lowp float intensityDistance;
    lowp float blurWeight;

    sampleColor = texture2D(sampler, blurTexCoords[0]);
    intensityDistance = min(abs(dot(sampleColor, lumaCoeff) - centralColorLuma) * distanceNormalizationFactor, 1.0);
    blurWeight = gaussianWeight[0] * (1.0 - intensityDistance);
    blurWeightSum += blurWeight;
    blurColorSum += sampleColor * blurWeight;

    sampleColor = texture2D(sampler, blurTexCoords[1]);
    intensityDistance = min(abs(dot(sampleColor, lumaCoeff) - centralColorLuma) * distanceNormalizationFactor, 1.0);
    blurWeight = gaussianWeight[1] * (1.0 - intensityDistance);
    blurWeightSum += blurWeight;
    blurColorSum += sampleColor * blurWeight;

    sampleColor = texture2D(sampler, blurTexCoords[2]);
    intensityDistance = min(abs(dot(sampleColor, lumaCoeff) - centralColorLuma) * distanceNormalizationFactor, 1.0);
    blurWeight = gaussianWeight[2] * (1.0 - intensityDistance);
    blurWeightSum += blurWeight;
    blurColorSum += sampleColor * blurWeight;

    sampleColor = texture2D(sampler, blurTexCoords[4]);
    intensityDistance = min(abs(dot(sampleColor, lumaCoeff) - centralColorLuma) * distanceNormalizationFactor, 1.0);
    blurWeight = gaussianWeight[4] * (1.0 - intensityDistance);
    blurWeightSum += blurWeight;
    blurColorSum += sampleColor * blurWeight;

    sampleColor = texture2D(sampler, blurTexCoords[5]);
    intensityDistance = min(abs(dot(sampleColor, lumaCoeff) - centralColorLuma) * distanceNormalizationFactor, 1.0);
    blurWeight = gaussianWeight[5] * (1.0 - intensityDistance);
    blurWeightSum += blurWeight;
    blurColorSum += sampleColor * blurWeight;

    sampleColor = texture2D(sampler, blurTexCoords[6]);
    intensityDistance = min(abs(dot(sampleColor, lumaCoeff) - centralColorLuma) * distanceNormalizationFactor, 1.0);
    blurWeight = gaussianWeight[6] * (1.0 - intensityDistance);
    blurWeightSum += blurWeight;
    blurColorSum += sampleColor * blurWeight;

    gl_FragColor = blurColorSum / blurWeightSum;
}
)glsl";

inline constexpr char kMixVertexShader[] = R"glsl(
attribute highp vec2 posAttr;
attribute highp vec2 texCoordAttr;
attribute highp vec2 blurTexCoordAttr;

uniform highp vec2 blurTexelSampleStep;

const lowp int GAUSSIAN_SAMPLES = 7;

varying highp vec2 texCoord;
varying highp vec2 blurTexCoords[GAUSSIAN_SAMPLES];

void main()
{
    gl_Position = vec4(posAttr, 0.0, 1.0);
    texCoord = texCoordAttr;
    for (int i = 0; i < GAUSSIAN_SAMPLES; i++) {
        lowp int sampleDistance = i - (GAUSSIAN_SAMPLES - 1) / 2;
        blurTexCoords[i] = blurTexCoordAttr + float(sampleDistance) * blurTexelSampleStep;
    }
}
)glsl";

inline constexpr char kMixFragmentShader[] = R"glsl(
const lowp int GAUSSIAN_SAMPLES = 7;

// Columns multiply R, G and B. U and V both reach 0.436: the V row of the BT.709 analogue matrix is scaled from
// 0.615 down to that.
const mediump mat3 matRgbToYuv = mat3(
    0.2126, -0.09991, 0.615 * (0.436 / 0.615),
    0.7152, -0.33609, -0.55861 * (0.436 / 0.615),
    0.0722, 0.436, -0.05639 * (0.436 / 0.615));
const lowp vec4 lumaCoeff = vec4(0.2126, 0.7152, 0.0722, 0.0); // BT.709

// Color models in the U-V plane: mean and inverse covariance of a Gaussian each.
const lowp vec2 skinMean = vec2(-0.055528433718798, 0.071547389444263);
const mediump mat2 skinCovInv = mat2(4.690967914534308e+03, 2.655776801323897e+03,
                                     2.655776801323897e+03, 2.363170007433643e+03);
const lowp vec2 hairMean = vec2(-0.002407782949704, 0.004225009409906);
const mediump mat2 hairCovInv = mat2(2.057923888877556e+04, 1.193716909187258e+04,
                                     1.193716909187258e+04, 1.080117955189486e+04);
const lowp vec2 lipMean = vec2(-0.0274, 0.1053);
const mediump mat2 lipCovInv = mat2(3304.7436, 737.217,
                                    737.217, 1317.7054);

varying highp vec2 texCoord;
varying highp vec2 blurTexCoords[GAUSSIAN_SAMPLES];

uniform sampler2D originalSampler;
uniform sampler2D blurSampler;
uniform lowp float whitenFactor;
uniform mediump float distanceNormalizationFactor;
uniform lowp float mixFactor;
uniform lowp float gaussianWeight[GAUSSIAN_SAMPLES];

void main()
{
    lowp vec4 originalColor = texture2D(originalSampler, texCoord);

    // The vertical taps, over the horizontally filtered picture.
    lowp vec4 centralColor = texture2D(blurSampler, blurTexCoords[3]);
    lowp float centralColorLuma = dot(centralColor, lumaCoeff);
    lowp float blurWeightSum = gaussianWeight[3];
    lowp vec4 blurColorSum = centralColor * gaussianWeight[3];

    lowp vec4 sampleColor;
    lowp float intensityDistance;
    lowp float blurWeight;

    sampleColor = texture2D(blurSampler, blurTexCoords[0]);
    intensityDistance = min(abs(dot(sampleColor, lumaCoeff) - centralColorLuma) * distanceNormalizationFactor, 1.0);
    blurWeight = gaussianWeight[0] * (1.0 - intensityDistance);
    blurWeightSum += blurWeight;
    blurColorSum += sampleColor * blurWeight;

    sampleColor = texture2D(blurSampler, blurTexCoords[1]);
    intensityDistance = min(abs(dot(sampleColor, lumaCoeff) - centralColorLuma) * distanceNormalizationFactor, 1.0);
    blurWeight = gaussianWeight[1] * (1.0 - intensityDistance);
    blurWeightSum += blurWeight;
    blurColorSum += sampleColor * blurWeight;

    sampleColor = texture2D(blurSampler, blurTexCoords[2]);
    intensityDistance = min(abs(dot(sampleColor, lumaCoeff) - centralColorLuma) * distanceNormalizationFactor, 1.0);
    blurWeight = gaussianWeight[2] * (1.0 - intensityDistance);
    blurWeightSum += blurWeight;
    blurColorSum += sampleColor * blurWeight;

    sampleColor = texture2D(blurSampler, blurTexCoords[4]);
    intensityDistance = min(abs(dot(sampleColor, lumaCoeff) - centralColorLuma) * distanceNormalizationFactor, 1.0);
    blurWeight = gaussianWeight[4] * (1.0 - intensityDistance);
    blurWeightSum += blurWeight;
    blurColorSum += sampleColor * blurWeight;

    sampleColor = texture2D(blurSampler, blurTexCoords[5]);
    intensityDistance = min(abs(dot(sampleColor, lumaCoeff) - centralColorLuma) * distanceNormalizationFactor, 1.0);
    blurWeight = gaussianWeight[5] * (1.0 - intensityDistance);
    blurWeightSum += blurWeight;
    blurColorSum += sampleColor * blurWeight;

    sampleColor = texture2D(blurSampler, blurTexCoords[6]);
    intensityDistance = min(abs(dot(sampleColor, lumaCoeff) - centralColorLuma) * distanceNormalizationFactor, 1.0);
    blurWeight = gaussianWeight[6] * (1.0 - intensityDistance);
    blurWeightSum += blurWeight;
    blurColorSum += sampleColor * blurWeight;

    lowp vec4 blurColor = blurColorSum / blurWeightSum;

    // How likely is skin, lip or hair here? Asked of a mostly blurred color, so that noise does not decide.
    lowp vec3 testColor = mix(originalColor.rgb, blurColor.rgb, 0.8);
    lowp vec3 yuvColor = matRgbToYuv * testColor;
    lowp vec2 skinBias = yuvColor.yz - skinMean;
    lowp float skinProb = exp(-0.5 * dot(skinCovInv * skinBias, skinBias));
    lowp vec2 hairBias = yuvColor.yz - hairMean;
    lowp float hairProb = exp(-0.5 * dot(hairCovInv * hairBias, hairBias));
    lowp vec2 lipBias = yuvColor.yz - lipMean;
    lowp float lipProb = exp(-0.5 * dot(lipCovInv * lipBias, lipBias));
    lipProb *= 0.75;

    lowp float positiveProb = lipProb + skinProb;
    positiveProb *= step(0.01, positiveProb);
    lowp float negtiveProb = step(0.01, hairProb);

    // Mid-range brightness only; hair holds back where the light does not vouch for skin.
    lowp float lightCoeff = smoothstep(0.2, 0.45, yuvColor.x) * (1.0 - smoothstep(0.6, 0.99, yuvColor.x));
    positiveProb *= lightCoeff;
    negtiveProb *= 1.0 - lightCoeff;
    lowp float skinKey = positiveProb / (0.05 + positiveProb + negtiveProb);
    skinKey = 0.6 * sqrt(skinKey);

    blurColor = mix(originalColor, blurColor, skinKey * mixFactor);
    if (whitenFactor > 0.0) {
        lowp float brightKey = 0.15;
        blurColor.r = min(blurColor.r + whitenFactor * brightKey, 1.0);
        blurColor.g = min(blurColor.g + whitenFactor * brightKey, 1.0);
        blurColor.b = min(blurColor.b + whitenFactor * brightKey, 1.0);
    }
    gl_FragColor = blurColor;
}
)glsl";

} // namespace ze
