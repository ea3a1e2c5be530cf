// What a decoder gives its caller, on a screen of any depth or none: raster, palette, BMP and JPEG files, in buffers of any size.
#include "fuzz/run.h"

static Bytes Export(uint32_t mask, Input input) {
  const uint8_t flags = input.Byte();
  const Run run(mask);
  const FuzzWindow window(&input);
  Let_Memory_Fail(input.Byte());
  JdecDecoder* const decoder = JDEC_New(input.Word() % 200, input.Word() % 200);
  if (!(flags & 1)) JDEC_Draw_Init(decoder, flags & 2 ? nullptr : window.handle);
  const Bytes frame = Next_Frame(&input);
  Push(decoder, frame);

  int32_t format = 3, width = 0, height = 0;
  Bytes palette(1024), all = window.Pixels();
  JDEC_get_size(decoder, &width, &height);
  const uint8_t* const raster =
      JDEC_get_decompressed_bitmap_ex(decoder, flags & 4 ? nullptr : &format, flags & 8 ? nullptr : palette.data());
  REQUIRE(raster == JDEC_get_decompressed_bitmap(decoder) && format >= 0 && format <= 4);
  constexpr int32_t pixelBytes[] = {1, 2, 2, 3, 4};
  if (raster && !(flags & 4)) all.insert(all.end(), raster, raster + (ptrdiff_t)width * height * pixelBytes[format]);
  all.insert(all.end(), palette.begin(), palette.end());

  Bytes bmp((size_t)input.Word());
  const int32_t needed = JDEC_get_decompressed_bitmap_ex2(decoder, bmp.data(), (int32_t)bmp.size());
  REQUIRE(needed == 0 || needed == width * height * 3 + 54);
  if (needed > (int32_t)bmp.size()) REQUIRE(std::count(bmp.begin(), bmp.end(), 0) == (ptrdiff_t)bmp.size());
  all.insert(all.end(), bmp.begin(), bmp.end());
  Bytes file(1 << 16);
  if (FILE* const stream = fmemopen(file.data(), file.size(), "wb")) {
    JDEC_Write_JFIF_File(decoder, stream);
    std::fclose(stream);
  }
  all.insert(all.end(), file.begin(), file.end());
  JDEC_Free(decoder);
  return all;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Compare_With_Plain(data, size, 1, Export);
  return 0;
}
