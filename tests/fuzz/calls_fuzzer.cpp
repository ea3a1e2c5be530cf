// Sequences of calls over all three families of exports, on two decoders or none, while allocations fail. In any order nothing
// breaks, and nothing stays alive.
#include "fuzz/run.h"

namespace {

struct Caller {
  Input input;
  HWND window;
  JdecDecoder* decoders[2] = {};
  JdecDecoder* at = nullptr;
  Bytes out = Bytes(4096);
  int32_t status = 0, width = 0, height = 0;
  int shown = 0;
};

int32_t Number(Caller* c) { return c->input.Number(); }

void Life(Caller* c, uint8_t which) {
  JdecDecoder*& slot = c->decoders[which >> 7];
  JDEC_Free(slot);
  const int32_t width = Number(c), height = Number(c);
  slot = which & 8 ? decoder_new() : which & 16 ? vb_JDEC_New(width, height) : JDEC_New(width, height);
  if (slot && which & 32) JDEC_Draw_Init(slot, which & 64 ? c->window : nullptr);
}

void Compress(Caller* c) {
  JDEC_get_size(c->at, &c->width, &c->height);
  const Bytes pixels((size_t)c->width * c->height * 3, c->input.Byte());
  if (c->width > 0 && pixels.size() < 2'000'000) {
    const int32_t quality = Number(c), flags = c->input.Byte();
    JDEC_Compress_RGB888(c->at, quality, pixels.data(), 0, c->out.data(), (int32_t)c->out.size(), flags & 1, flags & 2);
  }
}

/** Decodes bytes of the input by one of the calls that take them. */
void Feed(Caller* c, uint8_t which) {
  const Bytes bytes = which & 8 ? Next_Frame(&c->input) : c->input.Some(c->input.Byte());
  const auto length = (int32_t)bytes.size();
  switch (which % 6) {
    case 0:
      return Push(c->at, bytes, &c->status);
    case 1:
      return (void)vb_JDEC_Receive_Data(c->at, length, bytes.data());
    case 2:
      return (void)decoder_receive_data(c->at, length, bytes.data());
    case 3:
      return (void)JDEC_Receive_Data_2(c->at, bytes.data(), (uint32_t)length);
    case 4:
      return (void)vb_JDEC_Receive_Data_2(c->at, bytes.data(), (uint32_t)length);
    default:
      return (void)JDEC_write_decode_buffer(c->at, bytes.data(), length);
  }
}

void Write_File(Caller* c, uint8_t which) {
  if (FILE* const stream = fmemopen(c->out.data(), c->out.size(), "wb")) {
    which & 16 ? vb_JDEC_Write_JFIF_File(c->at, stream) : JDEC_Write_JFIF_File(c->at, stream);
    std::fclose(stream);
  }
}

void Poll(Caller* c, uint8_t which) {
  uint32_t length = 0;
  uint8_t* const out = c->out.data();
  const auto size = (int32_t)c->out.size();
  which & 16 ? vb_JDEC_Check_Decode_Frame(c->at, which & 32, out, size, &length, 0, which & 64)
             : JDEC_Check_Decode_Frame(c->at, which & 32, out, size, &length, 0, which & 64, &c->status);
}

void Draw_Again(Caller* c, uint8_t which) {
  const int32_t rect[] = {Number(c), Number(c), Number(c), Number(c)};
  which & 16 ? decoder_access_src_rect(c->at, rect) : vb_JDEC_Access_SrcRect(c->at, rect);
  REQUIRE(!vb_JDEC_Access_DstRect(c->at, which & 32 ? rect : nullptr) == !(c->at && which & 32));
}

using Act = void (*)(Caller* c, JdecDecoder* d, uint8_t detail);

int32_t Room(Caller* c, uint8_t detail) { return (int32_t)std::min<size_t>(c->out.size(), detail * 64u); }

void Count(HWND, uintptr_t user) { ++*reinterpret_cast<int*>(user); }

constexpr Act feed = [](Caller* c, JdecDecoder*, uint8_t detail) { Feed(c, detail); };
constexpr Act acts[] = {
    feed,
    feed,
    feed,
    feed,
    [](Caller* c, JdecDecoder*, uint8_t detail) { Poll(c, detail); },
    [](Caller* c, JdecDecoder*, uint8_t detail) { Life(c, detail); },
    [](Caller* c, JdecDecoder*, uint8_t) { Compress(c); },
    [](Caller* c, JdecDecoder*, uint8_t detail) { Write_File(c, detail); },
    [](Caller* c, JdecDecoder*, uint8_t detail) { Draw_Again(c, detail); },
    [](Caller*, JdecDecoder* d, uint8_t detail) {
      detail & 16 ? JDEC_Flush(d) : detail & 32 ? vb_JDEC_Flush(d) : decoder_flush(d);
    },
    [](Caller*, JdecDecoder* d, uint8_t detail) {
      detail & 16 ? JDEC_Draw_Exit(d) : detail & 32 ? vb_JDEC_Draw_Exit(d) : decoder_draw_exit(d);
    },
    [](Caller* c, JdecDecoder* d, uint8_t detail) { vb_JDEC_Draw_Init(d, detail & 16 ? c->window : nullptr); },
    [](Caller* c, JdecDecoder* d, uint8_t detail) { decoder_draw_init(d, detail & 16 ? c->window : nullptr); },
    [](Caller*, JdecDecoder* d, uint8_t detail) { JDEC_show(d, detail & 16); },
    [](Caller* c, JdecDecoder* d, uint8_t detail) {
      JDEC_get_size(d, detail & 16 ? &c->width : nullptr, detail & 32 ? &c->height : nullptr);
    },
    [](Caller* c, JdecDecoder* d, uint8_t) { decoder_get_dimension(d, &c->width, &c->height); },
    [](Caller* c, JdecDecoder* d, uint8_t detail) {
      vb_JDEC_get_decompressed_bitmap_ex(d, &c->width, detail & 16 ? c->out.data() : nullptr);
    },
    [](Caller* c, JdecDecoder* d, uint8_t detail) { vb_JDEC_get_decompressed_bitmap_ex2(d, c->out.data(), Room(c, detail)); },
    [](Caller* c, JdecDecoder* d, uint8_t detail) {
      decoder_get_decompressed_bitmap_ex2(d, detail & 16 ? c->out.data() : nullptr, Room(c, detail));
    },
    [](Caller* c, JdecDecoder* d, uint8_t detail) { JDEC_read_watermark_string(d, c->out.data(), Room(c, detail)); },
    [](Caller*, JdecDecoder* d, uint8_t) { JDEC_reload_palette(d); },
    [](Caller*, JdecDecoder* d, uint8_t) { JDEC_query_decode_buffer_count(d); },
    [](Caller* c, JdecDecoder* d, uint8_t) { decoder_enable_MD(d, Number(c)); },
    [](Caller* c, JdecDecoder* d, uint8_t) {
      const int32_t x = Number(c), y = Number(c), w = Number(c);
      decoder_set_MD_area_2(d, x, y, w, Number(c), 0);
    },
    [](Caller* c, JdecDecoder* d, uint8_t detail) {
      const int32_t column = Number(c);
      decoder_set_MD_area(d, column, Number(c), detail & 16);
    },
    [](Caller* c, JdecDecoder* d, uint8_t detail) {
      const int32_t x = Number(c), y = Number(c), w = Number(c);
      decoder_show_rectangle(d, x, y, w, Number(c), detail & 16);
    },
    [](Caller* c, JdecDecoder* d, uint8_t) { decoder_set_speed(d, Number(c)); },
    [](Caller* c, JdecDecoder*, uint8_t detail) {
      decoder_get_mime_string(detail & 16 ? reinterpret_cast<char*>(c->out.data()) : nullptr);
    },
    [](Caller* c, JdecDecoder* d, uint8_t detail) {
      decoder_register_draw_callback(d, detail & 16 ? Count : nullptr, (uintptr_t)&c->shown);
    },
    [](Caller*, JdecDecoder* d, uint8_t) { JDEC_Get_Quality(d), vb_JDEC_Get_Quality(d), vb_JDEC_get_decompressed_bitmap(d); },
    [](Caller*, JdecDecoder* d, uint8_t detail) {
      JDEC_SetMotionSeachEnable(d, detail & 16), JDEC_SetMotionSeachString(d, detail & 32 ? "moves" : nullptr);
    },
    [](Caller* c, JdecDecoder*, uint8_t) { Let_Memory_Fail(c->input.Byte()); },
};

void Call(Caller* c) {
  const uint8_t which = c->input.Byte(), detail = c->input.Byte();
  c->at = detail & 4 ? nullptr : c->decoders[detail & 1 && !(detail & 2)];
  acts[which % std::size(acts)](c, c->at, detail);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (Announced_Pixels(data, size) > MostAnnounced) return 0;
  Input input = {data, size};
  const uint32_t mask = Draw_Level(&input);
  const Run run(mask);
  const FuzzWindow window(&input);
  Caller caller = {.input = input, .window = window.handle};
  for (int calls = 0; caller.input.left && calls < 60; ++calls) Call(&caller);
  for (JdecDecoder* decoder : caller.decoders) decoder_free(decoder);
  return 0;
}
