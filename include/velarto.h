/* velarto: live video from network cameras, from the bytes of the camera to a picture in a window.
 *
 * A camera sends compressed pictures one after another with no container around them. A decoder takes those bytes in
 * chunks of any size, finds the frames, decodes them and, if it has a window, shows them:
 *
 *     JDEC_Init();
 *     JdecDecoder *decoder = JDEC_New(640, 480);
 *     JDEC_Draw_Init(decoder, window);              // or NULL: pictures are decoded and not shown
 *     int32_t status = 0;
 *     while ((length = next_bytes(buffer, sizeof buffer)) > 0)
 *         JDEC_Receive_Data(decoder, length, buffer, &status);
 *     JDEC_Free(decoder);
 *     JDEC_Exit();
 *
 * Threads: the library starts none. A decoder is driven by one thread at a time; decoders on different threads do not
 * disturb each other. While one thread drives a decoder others may use its ring and register its draw callback, no more.
 * JDEC_Init and JDEC_Exit may be called on any thread; JDEC_Init must have returned once before decoders are used.
 *
 * Ownership: a decoder owns everything that it hands out pointers to. A pointer to its picture or to one of its
 * rectangles stays valid until the decoder is freed, that to the picture only until the picture's size changes.
 *
 * Pictures lie in memory bottom row first, without padding between rows; a pixel of 24 bits is B, G, R and one of
 * 32 bits B, G, R, 0.
 *
 * All operations accept a null decoder and then do nothing, giving 0, -1 or null as told. */
#ifndef VELARTO_H
#define VELARTO_H

#include <stdint.h>
#include <stdio.h>

#if defined(_WIN32) && !defined(_WIN64)
#define VELARTO_CDECL __cdecl
#define VELARTO_STDCALL __stdcall
#else
#define VELARTO_CDECL
#define VELARTO_STDCALL
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** A decoder: one camera stream, its buffers, and the window it may show in. */
typedef struct JdecDecoder JdecDecoder;

/** A window: on Windows an HWND, elsewhere a window of the portable window layer. */
typedef struct HWND__* VelartoWindow;

/** A bitmap: on Windows an HBITMAP, elsewhere one of the portable window layer. */
typedef struct HBITMAP__* VelartoBitmap;

/** Called with the decoder's window and the caller's value. */
typedef void(VELARTO_CDECL* VelartoDrawCallback)(VelartoWindow window, uintptr_t user);

/* ---- Library ------------------------------------------------------------------------------------------------- */

/** Starts the library. Counted: each call wants a JDEC_Exit. Gives 1, always. */
int32_t VELARTO_CDECL JDEC_Init(void);

/** Ends the library when called as often as JDEC_Init. Decoders must have been freed by then. */
void VELARTO_CDECL JDEC_Exit(void);

/* ---- A decoder's life ---------------------------------------------------------------------------------------- */

/** Makes a decoder for pictures of width by height pixels, each 1 to 65535; frames of another size change it later.
 *  Writes the line of the speed regulator to standard output. Gives the decoder, which the caller owns and gives
 *  back to JDEC_Free, or null for a size out of range, for a picture of more than 128000 macroblocks of 16x16
 *  (or that many times 256 pixels), or when memory can't be had. */
JdecDecoder* VELARTO_CDECL JDEC_New(int32_t width, int32_t height);

/** Ends the decoder's display and releases everything that it owns. Null is allowed. */
void VELARTO_CDECL JDEC_Free(JdecDecoder* decoder);

/** Throws away the bytes of a frame not yet complete and makes the picture dark; a window shows that at once. */
void VELARTO_CDECL JDEC_Flush(JdecDecoder* decoder);

/** Gives the decoder a window to show in, or with null makes it headless: pictures are decoded into a raster of
 *  24 bits and not shown. The window stays the caller's and must outlive the display. Gives 1; or 0 if the decoder
 *  has a display already, or the display or its raster can't be made, and nothing has changed then. */
int32_t VELARTO_CDECL JDEC_Draw_Init(JdecDecoder* decoder, VelartoWindow window);

/** Takes the display away. From then on frames are passed over undecoded until JDEC_show. */
void VELARTO_CDECL JDEC_Draw_Exit(JdecDecoder* decoder);

/** show 0: complete frames are taken out of the stream but neither decoded nor shown. Any other value: they are. */
void VELARTO_CDECL JDEC_show(JdecDecoder* decoder, int32_t show);

/** Stores the picture's size in pixels; before the first frame the one given to JDEC_New. A null out pointer is
 *  passed over. */
void VELARTO_CDECL JDEC_get_size(JdecDecoder* decoder, int32_t* width, int32_t* height);

/** Gives the quality number of the frame decoded last, 50 before the first; 0 for a null decoder. */
int32_t VELARTO_CDECL JDEC_Get_Quality(JdecDecoder* decoder);

/* ---- Feeding ------------------------------------------------------------------------------------------------- */

/** The pushing path: takes a chunk of length bytes, any number, and decodes and shows each frame that they complete.
 *  status: a word that asks, when it is not 0, for the hidden text to be checked after each decoded frame; the
 *  result is stored in it, and once that is 0 no further check runs in the call. Null counts as 0. A hidden frame
 *  leaves it alone.
 *  Gives -1 if no frame was completed, or if data is null or length is 0 or less (nothing is added then). Otherwise
 *  gives length, or, if a frame was left unfinished behind a completed one, the bytes that it will need in all.
 *  A frame of more than 512000 bytes is no frame: its start is passed over. */
int32_t VELARTO_CDECL JDEC_Receive_Data(JdecDecoder* decoder, int32_t length, const uint8_t* data, int32_t* status);

/** The polling path: stores length bytes for JDEC_Check_Decode_Frame. Gives the bytes still lacking to 623, or 0;
 *  0 also, and stores nothing, for null data, a length of 0, or if the 524288 bytes of the buffer would be passed.
 *  Neither the bit rate nor a recording sees these bytes. */
int32_t VELARTO_CDECL JDEC_Receive_Data_2(JdecDecoder* decoder, const uint8_t* data, uint32_t length);

/** The polling path: takes at most one frame out of the bytes stored, copies it to buffer (capacity bytes) and, when
 *  decode is not 0, decodes it, and shows it when draw is not 0. status as in JDEC_Receive_Data. reserved is ignored.
 *  outLength, which may be null, receives the frame's length with results 1 and 4.
 *  Gives 0 for a null decoder or buffer or a capacity of 0; 1 when a frame was taken (ask again, there may
 *  be more); 2 when a frame start is there but bytes are lacking; 3 when fewer than 26 bytes are held, or no frame start is among
 *  them (they are dropped then); 4 when the frame is complete but longer than capacity (it stays). */
int32_t VELARTO_CDECL JDEC_Check_Decode_Frame(JdecDecoder* decoder, int32_t decode, uint8_t* buffer, int32_t capacity,
                                              uint32_t* outLength, int32_t reserved, int32_t draw, int32_t* status);

/** Gives the free bytes of the decoder's ring, of 524288, which stands between a thread that delivers stream bytes and the one
 * that decodes them: a second thread may call this and the next one. Holds the caller up while
 *  little room is left: 150 milliseconds below 65536 free bytes, 50 below 104857. 0 for a null decoder. */
int32_t VELARTO_CDECL JDEC_query_decode_buffer_count(JdecDecoder* decoder);

/** Stores bytes in the ring, as many of length as are free, and gives their number; the rest is to be offered again. 0 for a null
 *  argument, a length of 0 or less, or a full ring. */
int32_t VELARTO_CDECL JDEC_write_decode_buffer(JdecDecoder* decoder, const uint8_t* data, int32_t length);

/* ---- The picture --------------------------------------------------------------------------------------------- */

/** Gives the raster: the current picture in the depth of the screen (24 bits when headless), bottom row first. */
uint8_t* VELARTO_CDECL JDEC_get_decompressed_bitmap(JdecDecoder* decoder);

/** As JDEC_get_decompressed_bitmap, and stores in format, which may be null, how to read it: 0 8-bit palette indices,
 *  1 15-bit 5-5-5, 2 16-bit 5-6-5, 3 24-bit, 4 32-bit. palette: 256 entries of four bytes, filled with format 0 only;
 *  may be null. */
uint8_t* VELARTO_CDECL JDEC_get_decompressed_bitmap_ex(JdecDecoder* decoder, int32_t* format, uint8_t* palette);

/** Writes the picture as a BMP file of 24 bits into buffer. Gives its size, width * height * 3 + 54, and writes
 *  nothing if capacity is smaller; 0 for a null decoder or buffer, a capacity of 0, or when memory can't be
 *  had. Works with and without a display. The last column of an odd width and the last row of an odd height are not
 *  written: the buffer keeps what it held there. */
int32_t VELARTO_CDECL JDEC_get_decompressed_bitmap_ex2(JdecDecoder* decoder, uint8_t* buffer, int32_t capacity);

/** Gives the length of the text that was hidden in the frame decoded last, in this process and by whichever decoder, 0 to 1024
 * bytes, and copies it into buffer, without a terminating zero, if capacity is not below that. 0 behind a frame that was passed
 * over undecoded. decoder is not read. */
int32_t VELARTO_CDECL JDEC_read_watermark_string(JdecDecoder* decoder, uint8_t* buffer, int32_t capacity);

/* ---- Stills -------------------------------------------------------------------------------------------------- */

/** Compresses a picture of the decoder's size into a frame. pixels: B, G, R, bottom row first, rows of width * 3 bytes without
 *  padding; with doubleRows not 0 only height / 2 rows, each of which counts twice. quality 0 to 100 (values outside count as
 *  the nearest) becomes quality * 80 / 100 + 10 in the frame. ignored: any value. withMarkers not 0: a complete JPEG image; 0: a
 *  compact frame. Gives the bytes written to buffer; or 0, with buffer untouched, for a null argument, if capacity is too
 *  small, if the frame would pass 512000 bytes, or when memory can't be had. The decoder's picture, quality and frame store are
 * then those of the compressed picture. */
int32_t VELARTO_CDECL JDEC_Compress_RGB888(JdecDecoder* decoder, int32_t quality, const uint8_t* pixels, uint32_t ignored,
                                           uint8_t* buffer, int32_t capacity, int32_t withMarkers, int32_t doubleRows);

/** Writes the frame that the decoder holds, decoded or compressed last, to an open stream as a JPEG image, without compressing it
 *  anew. The stream must belong to the same C runtime. Gives the bytes of the last write: 2 when the image is whole; 0, and
 * writes nothing, for a null argument or when there is no whole frame. */
int32_t VELARTO_CDECL JDEC_Write_JFIF_File(JdecDecoder* decoder, FILE* stream);

/* ---- The window ---------------------------------------------------------------------------------------------- */

/** Stores rect (left, top, right, bottom) and shows the current picture again: the answer to a paint message. Gives the
 *  decoder's source rectangle, or null if either argument is null. */
int32_t* VELARTO_CDECL JDEC_Access_SrcRect(JdecDecoder* decoder, const int32_t* rect);

/** Gives the decoder's destination rectangle, (0, 0, width, height) as given to JDEC_New, or null if either argument is null.
 *  rect is not read. */
int32_t* VELARTO_CDECL JDEC_Access_DstRect(JdecDecoder* decoder, const int32_t* rect);

/** Installs the palette of an 8-bit screen again: the answer to the system's palette messages. Nothing happens on other screens
 * or without a display. */
void VELARTO_CDECL JDEC_reload_palette(JdecDecoder* decoder);

/* ---- Overlays ------------------------------------------------------------------------------------------------ */

/* What lies over the picture in the window and never in the exported picture. Overlays exist in the DirectDraw form of the
 * display; without it, or without a display, these operations do nothing and give 0 where they give anything. What a call draws
 * shows with the next frame or repaint. A change of the picture's size starts all of them afresh but the draw callback.
 * Coordinates may be any numbers: what lies outside is not drawn. */

/** Shows the motion-area layer with any value but 0, which takes it away without erasing it. Bit 1 (mask 2) turns on, in the
 * whole process, the mode in which the moving rectangle is shown and lines leave the layer's red alone; another value than 0
 * turns it off. */
void VELARTO_CDECL JDEC_enable_MD(JdecDecoder* decoder, int32_t value);

/** Colour of the frame that JDEC_set_MD_area_2 draws from now on, in the whole process: 0 red, else blue. Red again when a
 * display is made, and with each frame that shows a PTZ or position bitmap. */
void VELARTO_CDECL JDEC_set_MD_color(int32_t which);

/** Marks a cell of the grid with a hatch, or with marked 0 clears it. column 0 to 19 and row 0 to 14; values outside count as the
 *  nearest. Cells are 16 by 16 pixels of the picture, 32 by 32 at 640x480, 32 by 16 at other pictures 640 wide. */
void VELARTO_CDECL JDEC_set_MD_area(JdecDecoder* decoder, int32_t column, int32_t row, int32_t marked);

/** Dims the whole picture but for a framed rectangle, in picture pixels (at 640x240 counted in 480 rows), moved back into the
 * picture where it reaches out at the right or below. Grid and marked cells are gone then. The last argument is not used. */
void VELARTO_CDECL JDEC_set_MD_area_2(JdecDecoder* decoder, int32_t left, int32_t top, int32_t width, int32_t height,
                                      int32_t unused);

/** Moves the rectangle, in a measure of 320 by 240 for pictures 640 wide too; hide other than 0 takes it away. Only in the mode
 * that JDEC_enable_MD turns on. */
void VELARTO_CDECL JDEC_show_rectangle(JdecDecoder* decoder, int32_t x, int32_t y, int32_t width, int32_t height, int32_t hide);

/** Shows a bitmap, black being transparent, at the picture's lower right, 20 rows above its foot, while the motion-area layer is
 * off. Of a bitmap higher than 120 rows or wider than the picture the upper left part is taken. A bitmap that was stored is
 * deleted, so the handle is no longer the caller's. Null takes the bitmap away. */
void VELARTO_CDECL JDEC_set_ptz_bmp(JdecDecoder* decoder, VelartoBitmap bitmap);

/** Shows a bitmap of the picture's size, black being transparent, while the motion-area layer is off and no PTZ bitmap is set; a
 * larger one is cut, around a smaller one nothing shows. Gives 1 when it was stored, and deleted; else 0, and it stays the
 * caller's. Null takes the bitmap away and gives 0. */
int32_t VELARTO_CDECL JDEC_set_pos_bmp(JdecDecoder* decoder, VelartoBitmap bitmap);

/** Has callback called, on the thread that shows, after each frame that DirectDraw has brought to the screen; null ends that. The
 *  callback may register another. It outlives changes of the picture's size. Any thread may register one while another drives the
 *  decoder; a call of the one before may then still be under way. */
void VELARTO_CDECL JDEC_register_draw_callback(JdecDecoder* decoder, VelartoDrawCallback callback, uintptr_t user);

/** Shows (not 0) or hides the motion-search caption and rectangle, drawn in red into each shown frame. These three give 1; 0
 * without a decoder or display. */
int32_t VELARTO_CDECL JDEC_SetMotionSeachEnable(JdecDecoder* decoder, int32_t enable);

/** Sets the motion-search rectangle, in picture pixels. */
int32_t VELARTO_CDECL JDEC_SetMotionSeachArea(JdecDecoder* decoder, int32_t left, int32_t top, int32_t right, int32_t bottom);

/** Sets the motion-search caption, centred at the picture's top: of a longer text 255 characters. 0 also for a null text. */
int32_t VELARTO_CDECL JDEC_SetMotionSeachString(JdecDecoder* decoder, const char* text);

/* ---- The plug-in ----------------------------------------------------------------------------------------------- */

/* A browser's entries. It loads the library and calls these in order; its tables belong to it and must last until NP_Shutdown.
 * The instances that it makes through the table each own a decoder, at pdata. All of it runs on the thread of the instances'
 * windows. */

/** The browser's tables of functions, in the layout of its plug-in interface. */
struct NPPluginFuncs;
struct NPNetscapeFuncs;

/** Fills the table with the plug-in's functions, version 9 of the interface; its size stays. Gives 0; 3 for null. */
int16_t VELARTO_STDCALL NP_GetEntryPoints(struct NPPluginFuncs* table);

/** Takes the browser's table and starts the library. Gives 0; 3 for null; 8 for a browser whose major version is above 0; 4 when
 * the library can't be started. */
int16_t VELARTO_STDCALL NP_Initialize(struct NPNetscapeFuncs* table);

/** Ends what NP_Initialize started. Instances must have ended. Gives 0. */
int16_t VELARTO_STDCALL NP_Shutdown(void);

/* ---- The vb_JDEC_ family --------------------------------------------------------------------------------------- */

/* The operations of the same name without vb_, under the calling convention __stdcall. The two that lack the status word never
 * ask for the hidden text to be checked. */
int32_t VELARTO_STDCALL vb_JDEC_Init(void);
void VELARTO_STDCALL vb_JDEC_Exit(void);
JdecDecoder* VELARTO_STDCALL vb_JDEC_New(int32_t width, int32_t height);
void VELARTO_STDCALL vb_JDEC_Free(JdecDecoder* decoder);
void VELARTO_STDCALL vb_JDEC_Flush(JdecDecoder* decoder);
int32_t VELARTO_STDCALL vb_JDEC_Draw_Init(JdecDecoder* decoder, VelartoWindow window);
void VELARTO_STDCALL vb_JDEC_Draw_Exit(JdecDecoder* decoder);
int32_t VELARTO_STDCALL vb_JDEC_Get_Quality(JdecDecoder* decoder);
int32_t VELARTO_STDCALL vb_JDEC_Write_JFIF_File(JdecDecoder* decoder, FILE* stream);
int32_t VELARTO_STDCALL vb_JDEC_Receive_Data(JdecDecoder* decoder, int32_t length, const uint8_t* data);
int32_t VELARTO_STDCALL vb_JDEC_Receive_Data_2(JdecDecoder* decoder, const uint8_t* data, uint32_t length);
int32_t VELARTO_STDCALL vb_JDEC_Check_Decode_Frame(JdecDecoder* decoder, int32_t decode, uint8_t* buffer, int32_t capacity,
                                                   uint32_t* outLength, int32_t reserved, int32_t draw);
uint8_t* VELARTO_STDCALL vb_JDEC_get_decompressed_bitmap(JdecDecoder* decoder);
uint8_t* VELARTO_STDCALL vb_JDEC_get_decompressed_bitmap_ex(JdecDecoder* decoder, int32_t* format, uint8_t* palette);
int32_t VELARTO_STDCALL vb_JDEC_get_decompressed_bitmap_ex2(JdecDecoder* decoder, uint8_t* buffer, int32_t capacity);
int32_t* VELARTO_STDCALL vb_JDEC_Access_SrcRect(JdecDecoder* decoder, const int32_t* rect);
int32_t* VELARTO_STDCALL vb_JDEC_Access_DstRect(JdecDecoder* decoder, const int32_t* rect);

/* ---- The decoder_ family ---------------------------------------------------------------------------------------- */

/** As JDEC_Init. */
int32_t VELARTO_CDECL decoder_Initialize(void);

/** As JDEC_Exit. */
void VELARTO_CDECL decoder_Shutdown(void);

/* The JDEC_ operations of the same meaning, behind a guard: with a null decoder they do nothing and give 0 or null. */
void VELARTO_CDECL decoder_free(JdecDecoder* decoder);
void VELARTO_CDECL decoder_flush(JdecDecoder* decoder);
int32_t VELARTO_CDECL decoder_draw_init(JdecDecoder* decoder, VelartoWindow window);
void VELARTO_CDECL decoder_draw_exit(JdecDecoder* decoder);
int32_t* VELARTO_CDECL decoder_access_src_rect(JdecDecoder* decoder, const int32_t* rect);
int32_t VELARTO_CDECL decoder_get_decompressed_bitmap_ex2(JdecDecoder* decoder, uint8_t* buffer, int32_t capacity);
void VELARTO_CDECL decoder_enable_MD(JdecDecoder* decoder, int32_t value);
void VELARTO_CDECL decoder_set_MD_color(int32_t which);
void VELARTO_CDECL decoder_set_MD_area(JdecDecoder* decoder, int32_t column, int32_t row, int32_t marked);
void VELARTO_CDECL decoder_set_MD_area_2(JdecDecoder* decoder, int32_t left, int32_t top, int32_t width, int32_t height,
                                         int32_t unused);
void VELARTO_CDECL decoder_show_rectangle(JdecDecoder* decoder, int32_t x, int32_t y, int32_t width, int32_t height,
                                          int32_t hide);
void VELARTO_CDECL decoder_set_ptz_bmp(JdecDecoder* decoder, VelartoBitmap bitmap);
void VELARTO_CDECL decoder_register_draw_callback(JdecDecoder* decoder, VelartoDrawCallback callback, uintptr_t user);

/** As JDEC_get_size. */
void VELARTO_CDECL decoder_get_dimension(JdecDecoder* decoder, int32_t* width, int32_t* height);

/** JDEC_New with 320 by 240 pixels. */
JdecDecoder* VELARTO_CDECL decoder_new(void);

/** JDEC_Receive_Data without a check of the hidden text. 0 for a null decoder, which is not the -1 of no frame. */
int32_t VELARTO_CDECL decoder_receive_data(JdecDecoder* decoder, int32_t length, const uint8_t* data);

/** Stores a speed, and the factor derived from it, with the decoder, and writes both to standard output: the factor is the speed,
 * or 1 / n for a speed of -n. Nothing is paced by it. Gives 1; 0 for a null decoder. */
int32_t VELARTO_CDECL decoder_set_speed(JdecDecoder* decoder, int32_t speed);

/** Writes the 18 characters of the stream's MIME type and a zero to buffer, unless that is null. */
void VELARTO_CDECL decoder_get_mime_string(char* buffer);

/** Gives 1: every frame is a whole picture. Callers' arguments, if any, are not looked at, here and in the next two. */
int32_t VELARTO_CDECL decoder_is_intra_frame(void);

/** Gives -1. */
int32_t VELARTO_CDECL decoder_match_bitstream_header_pattern(void);

/** Does nothing. */
void VELARTO_CDECL decoder_enable_regulation(void);

#ifdef __cplusplus
}
#endif

#endif
