// The identifiers of the imaging component are defined here: no library of the compiler's has them all.
#include <windows.h>
// Behind the header above, and before the one below.
#include <initguid.h>
#include <wincodec.h>

#include "platform/com/RefPtr.h"
#include "shellkit/component/ComApartment.h"
#include "shellkit/media/PngFile.h"

namespace marnoth {

namespace {

/// Rows from the top, three bytes a pixel in the order that the component takes them.
std::vector<BYTE> blueFirst(const Bitmap& picture) {
    std::vector<BYTE> bytes;
    bytes.reserve(static_cast<std::size_t>(picture.width()) * static_cast<std::size_t>(picture.height()) * 3);
    for (int y = 0; y < picture.height(); ++y)
        for (const Color& pixel : picture.row(y))
            bytes.insert(bytes.end(), {pixel.blue, pixel.green, pixel.red});
    return bytes;
}

HRESULT writeFrame(IWICBitmapEncoder& encoder, const Bitmap& picture) {
    RefPtr<IWICBitmapFrameEncode> frame;
    HRESULT result = encoder.CreateNewFrame(frame.put(), nullptr);
    if (SUCCEEDED(result)) result = frame->Initialize(nullptr);
    const auto width = static_cast<UINT>(picture.width());
    const auto height = static_cast<UINT>(picture.height());
    if (SUCCEEDED(result)) result = frame->SetSize(width, height);
    WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
    if (SUCCEEDED(result)) result = frame->SetPixelFormat(&format);
    if (SUCCEEDED(result) && format != GUID_WICPixelFormat24bppBGR) return E_FAIL;
    std::vector<BYTE> pixels = blueFirst(picture);
    if (SUCCEEDED(result))
        result = frame->WritePixels(height, width * 3, static_cast<UINT>(pixels.size()), pixels.data());
    return SUCCEEDED(result) ? frame->Commit() : result;
}

HRESULT writeTo(IStream& stream, const Bitmap& picture) {
    RefPtr<IWICImagingFactory> factory;
    HRESULT result = CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                      IID_IWICImagingFactory, factory.putVoid());
    RefPtr<IWICBitmapEncoder> encoder;
    if (SUCCEEDED(result)) result = factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, encoder.put());
    if (SUCCEEDED(result)) result = encoder->Initialize(&stream, WICBitmapEncoderNoCache);
    if (SUCCEEDED(result)) result = writeFrame(*encoder.get(), picture);
    return SUCCEEDED(result) ? encoder->Commit() : result;
}

std::vector<std::byte> bytesOf(IStream& stream) {
    STATSTG about{};
    if (FAILED(stream.Stat(&about, STATFLAG_NONAME)) || FAILED(stream.Seek({}, STREAM_SEEK_SET, nullptr)))
        return {};
    std::vector<std::byte> bytes(about.cbSize.QuadPart);
    ULONG got = 0;
    if (FAILED(stream.Read(bytes.data(), static_cast<ULONG>(bytes.size()), &got))) return {};
    bytes.resize(got);
    return bytes;
}

}  // namespace

std::vector<std::byte> encodePng(const Bitmap& picture) {
    const ComApartment apartment(COINIT_APARTMENTTHREADED);
    RefPtr<IStream> stream;
    if (FAILED(CreateStreamOnHGlobal(nullptr, TRUE, stream.put()))) return {};
    if (FAILED(writeTo(*stream.get(), picture))) return {};
    return bytesOf(*stream.get());
}

}  // namespace marnoth
