#include "host/AudioFormats.h"

#include <cstring>

namespace marnoth {

namespace {

bool isSampleFormat(const WAVEFORMATEX& format) {
    switch (format.wFormatTag) {
        case WAVE_FORMAT_PCM:
        case WAVE_FORMAT_EXTENSIBLE:
            return format.wBitsPerSample == 16;
        case WAVE_FORMAT_IEEE_FLOAT:
            return format.wBitsPerSample == 32;
        default:
            return false;
    }
}

}  // namespace

WAVEFORMATEX FormatOf(const AM_MEDIA_TYPE& type) {
    WAVEFORMATEX format;
    std::memcpy(&format, type.pbFormat, sizeof format);
    return format;
}

HRESULT CheckAudioMediaType(const AM_MEDIA_TYPE* type) {
    if (!type) return E_POINTER;
    if (type->majortype != MEDIATYPE_Audio || type->bTemporalCompression) return VFW_E_TYPE_NOT_ACCEPTED;
    if (type->cbFormat < sizeof(WAVEFORMATEX) || !type->pbFormat) return VFW_E_TYPE_NOT_ACCEPTED;
    const WAVEFORMATEX format = FormatOf(*type);
    const bool accepted = isSampleFormat(format) && (format.nChannels == 1 || format.nChannels == 2);
    return accepted ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
}

HRESULT CheckInputType(CPzi& pzi, const AM_MEDIA_TYPE* type) {
    if (const HRESULT hr = CheckAudioMediaType(type); FAILED(hr)) return hr;
    const WAVEFORMATEX format = FormatOf(*type);
    return pzi.CheckInputFormat(&format);
}

HRESULT CheckOutputType(CPzi& pzi, const AM_MEDIA_TYPE* type) {
    if (const HRESULT hr = CheckAudioMediaType(type); FAILED(hr)) return hr;
    const WAVEFORMATEX format = FormatOf(*type);
    return pzi.CheckOutputFormat(&format);
}

HRESULT CheckTransform(CPzi& pzi, const AM_MEDIA_TYPE* input, const AM_MEDIA_TYPE* output) {
    if (const HRESULT hr = CheckInputType(pzi, input); FAILED(hr)) return hr;
    if (const HRESULT hr = CheckOutputType(pzi, output); FAILED(hr)) return hr;
    const WAVEFORMATEX in = FormatOf(*input);
    const WAVEFORMATEX out = FormatOf(*output);
    if (in.nSamplesPerSec != out.nSamplesPerSec) return VFW_E_TYPE_NOT_ACCEPTED;
    return pzi.CheckFormatPair(&in, &out);
}

HRESULT SetFormat(CPzi& pzi, PIN_DIRECTION direction, const AM_MEDIA_TYPE* type) {
    CAutoLock lock(pzi);
    const bool isInput = direction == PINDIR_INPUT;
    const HRESULT hr = isInput ? CheckInputType(pzi, type) : CheckOutputType(pzi, type);
    if (hr != S_OK) return hr;
    WAVEFORMATEX& format = isInput ? pzi.inputFormat : pzi.outputFormat;
    format = FormatOf(*type);
    format.nBlockAlign = static_cast<WORD>(format.nChannels * format.wBitsPerSample / 8);
    return S_OK;
}

}  // namespace marnoth
