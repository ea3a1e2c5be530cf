/* velarto: live video from network cameras, from the bytes of the camera to a picture in a window.
 *
 * A camera sends compressed pictures one after another with no container around them. A decoder takes those bytes as they
 * come, finds the frames, decodes them and, if it has a window, shows them:
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
 * Platforms: on Windows, velarto.dll shows pictures in any window. On Linux, libvelarto.so decodes headless: windows are
 * for programs that bring the portable window layer (velarto, velarto-host), and JDEC_Draw_Init refuses a window that is
 * not one of the layer's with 0.
 *
 * Threads: the library starts none. A decoder is used by one thread at a time. Meanwhile other threads may only use its
 * ring and register its draw callback. Different decoders can be used by different threads at the same time. JDEC_Init
 * and JDEC_Exit may be called on any thread; JDEC_Init must have returned once before decoders are used.
 *
 * Ownership: what a decoder gives a pointer to stays the decoder's. A pointer to one of its rectangles is valid until the
 * decoder is freed. A pointer to its picture is valid until the picture's size changes, JDEC_Draw_Init gives 1, or the
 * decoder is freed.
 *
 * In memory, the bottom row of a picture is first, without padding between rows. A pixel of 24 bits is B, G, R and one of
 * 32 bits B, G, R, 0.
 *
 * All operations accept a null decoder. They do nothing then and give 0, -1 or null, as stated. */
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

/** A decoder: a camera stream, its buffers, and the window that it may show pictures in. */
typedef struct JdecDecoder JdecDecoder;

/** A window: on Windows an HWND, elsewhere a window of the portable window layer. */
typedef struct HWND__* VelartoWindow;

/** A bitmap: on Windows an HBITMAP, elsewhere one of the portable window layer. */
typedef struct HBITMAP__* VelartoBitmap;

/** A draw callback, called with the decoder's window and the value given at its registration. */
typedef void(VELARTO_CDECL* VelartoDrawCallback)(VelartoWindow window, uintptr_t user);

/* ---- Library ------------------------------------------------------------------------------------------------- */

/** Starts the library. Calls are counted: each one needs a JDEC_Exit. Gives 1, always. */
int32_t VELARTO_CDECL JDEC_Init(void);

/** Ends the library when it was called as often as JDEC_Init. All decoders must be freed before that. */
void VELARTO_CDECL JDEC_Exit(void);

/* ---- A decoder's life ---------------------------------------------------------------------------------------- */

/** Makes a decoder for pictures of width by height pixels, each 1 to 65535. Frames of another size change its size later.
 *  Writes a line about the speed regulator to standard output, and waits while another thread holds that stream. Gives the
 * decoder, which the caller owns and frees with JDEC_Free. Gives null for a size out of range, for a picture of more than 128000
 * macroblocks of 16x16 or more than that many times 256 pixels, or without memory. */
JdecDecoder* VELARTO_CDECL JDEC_New(int32_t width, int32_t height);

/** Ends the decoder's display and frees the decoder and everything that it owns. Null is allowed. */
void VELARTO_CDECL JDEC_Free(JdecDecoder* decoder);

/** Drops the bytes of an incomplete frame and makes the picture dark. A window shows that at once. */
void VELARTO_CDECL JDEC_Flush(JdecDecoder* decoder);

/** Makes a display for the decoder in that window and shows the current picture there; or with null makes the decoder
 *  headless: the picture becomes dark, and pictures are decoded into a raster of 24 bits and not shown. The window stays the
 * caller's and must outlive the display. Gives 1. Gives 0, with nothing changed, if the decoder has a display already, if window
 * is not a window (on Linux, one of the portable window layer), or if the display or its raster can't be made. */
int32_t VELARTO_CDECL JDEC_Draw_Init(JdecDecoder* decoder, VelartoWindow window);

/** Ends the display. JDEC_Receive_Data then skips frames undecoded until JDEC_show. A frame of another size that is decoded
 *  after that makes a display for the same window again. */
void VELARTO_CDECL JDEC_Draw_Exit(JdecDecoder* decoder);

/** Hides frames if show is 0: JDEC_Receive_Data takes them out of the stream but neither decodes nor shows them. Any other value
 *  ends that. JDEC_Check_Decode_Frame is told by its own arguments. */
void VELARTO_CDECL JDEC_show(JdecDecoder* decoder, int32_t show);

/** Stores the picture's size in pixels, before the first frame the size given to JDEC_New. An out pointer may be null. */
void VELARTO_CDECL JDEC_get_size(JdecDecoder* decoder, int32_t* width, int32_t* height);

/** Gives the quality of the frame decoded last, 50 before the first one; 0 for a null decoder. */
int32_t VELARTO_CDECL JDEC_Get_Quality(JdecDecoder* decoder);

/* ---- Feeding ------------------------------------------------------------------------------------------------- */

/** The pushing path: takes a chunk of length bytes, any number, and decodes and shows each frame that it completes.
 *  A frame start must be recognised in the bytes that are held when a chunk ends, else they are dropped: of a compact header 12
 *  bytes, with a prefix 26, of a JFIF frame 625. Where chunks may end earlier in a frame, as with reads from a socket, use the
 *  polling path, which keeps a JFIF start whose header is incomplete, or offer whole frames. Within a chunk nothing is cut.
 *  status: if it is not 0, the hidden text is checked after each decoded frame and the result is stored in it; once it is
 *  0, the call checks no more. Null counts as 0. A hidden frame doesn't change it.
 *  Gives -1 if no frame was completed; and if data is null or length is 0 or less, which adds nothing. Otherwise gives
 *  length; or, if an incomplete frame follows the completed ones, the length of that frame, for a JFIF frame one byte more
 *  than is held of it.
 *  A frame of more than 512000 bytes is no frame: its start is skipped. */
int32_t VELARTO_CDECL JDEC_Receive_Data(JdecDecoder* decoder, int32_t length, const uint8_t* data, int32_t* status);

/** The polling path: stores length bytes for JDEC_Check_Decode_Frame. Gives the number of bytes missing to 623, or 0. Gives
 *  0 too, and stores nothing, for null data, a length of 0, or if they don't fit the buffer of 524288 bytes. These bytes
 *  are neither counted for the bit rate nor recorded.
 *  As long as JDEC_Check_Decode_Frame is called until it gives no more frames before the next bytes are offered, 12288 bytes
 *  always fit: offer a longer chunk in such pieces. A longer one may be refused; if a JFIF frame was open whose end had not come
 *  by then, that frame is lost, and the next poll looks for another one. */
int32_t VELARTO_CDECL JDEC_Receive_Data_2(JdecDecoder* decoder, const uint8_t* data, uint32_t length);

/** The polling path: takes at most one frame out of the stored bytes and copies it to buffer, which has capacity bytes.
 *  Decodes it if decode is not 0, and shows it if draw is not 0 too. status as in JDEC_Receive_Data. reserved is ignored.
 *  outLength, which may be null, receives the frame's length with results 1 and 4.
 *  Gives 0 for a null decoder or buffer or a capacity of 0; 1 if a frame was taken, and there may be more; 2 if there is a
 *  frame start but bytes are missing; 3 if fewer than 26 bytes are stored, or no frame start is among them and they were
 *  dropped; 4 if the frame is complete but longer than capacity, and it stays stored. */
int32_t VELARTO_CDECL JDEC_Check_Decode_Frame(JdecDecoder* decoder, int32_t decode, uint8_t* buffer, int32_t capacity,
                                              uint32_t* outLength, int32_t reserved, int32_t draw, int32_t* status);

/** Gives the free bytes of the decoder's ring of 524288 bytes, in which one thread puts stream bytes for the thread that
 *  decodes them. Then waits if there is little room: 150 milliseconds below 65536 free bytes, 50 below 104857. 0 for a null
 *  decoder. This and the next operation may be called by another thread than the one that uses the decoder. */
int32_t VELARTO_CDECL JDEC_query_decode_buffer_count(JdecDecoder* decoder);

/** Stores bytes in the ring, as many of length as there is room for, and gives their number. The others can be offered
 *  again. 0 for a null argument, a length of 0 or less, or a full ring. */
int32_t VELARTO_CDECL JDEC_write_decode_buffer(JdecDecoder* decoder, const uint8_t* data, int32_t length);

/* ---- The picture --------------------------------------------------------------------------------------------- */

/** Gives the raster: the current picture in the depth of the screen, for a headless decoder in 24 bits. */
uint8_t* VELARTO_CDECL JDEC_get_decompressed_bitmap(JdecDecoder* decoder);

/** As JDEC_get_decompressed_bitmap, and stores in format, which may be null, how to read it: 0 8-bit palette indices,
 *  1 15-bit 5-5-5, 2 16-bit 5-6-5, 3 24-bit, 4 32-bit. palette: 256 entries of four bytes, filled with format 0 only;
 *  may be null. */
uint8_t* VELARTO_CDECL JDEC_get_decompressed_bitmap_ex(JdecDecoder* decoder, int32_t* format, uint8_t* palette);

/** Writes the picture as a BMP file of 24 bits, without padding between rows, to buffer. Gives its size, width * height *
 *  3 + 54, and writes nothing if capacity is smaller. Gives 0 for a null decoder or buffer, a capacity of 0, or without
 *  memory. Works with and without a display. The last column of an odd width and the last row of an odd height are not
 *  written: the buffer keeps what it held there. */
int32_t VELARTO_CDECL JDEC_get_decompressed_bitmap_ex2(JdecDecoder* decoder, uint8_t* buffer, int32_t capacity);

/** Gives the length, 0 to 1024 bytes, of the text hidden in the frame that any decoder of the process decoded last, and
 *  copies the text to buffer, without a terminating zero, unless buffer is null or capacity is smaller. 0 after a frame that
 *  was skipped undecoded. decoder is not used. */
int32_t VELARTO_CDECL JDEC_read_watermark_string(JdecDecoder* decoder, uint8_t* buffer, int32_t capacity);

/* ---- Stills -------------------------------------------------------------------------------------------------- */

/** Compresses a picture of the decoder's size into a frame. pixels: B, G, R, bottom row first, rows of width * 3 bytes
 *  without padding; if doubleRows is not 0 only height / 2 rows, each of which is used twice. quality: clamped to 0 to 100;
 *  the frame has the quality quality * 80 / 100 + 10. ignored: any value. withMarkers: not 0 for a complete JPEG image, 0
 *  for a compact frame. Gives the bytes written to buffer. Gives 0, with buffer unchanged, for a null argument, if capacity
 *  is too small, if the frame would be longer than 512000 bytes, or without memory. The decoder then has the quality and
 *  the frame of the compressed picture, and JDEC_get_decompressed_bitmap_ex2 writes it. */
int32_t VELARTO_CDECL JDEC_Compress_RGB888(JdecDecoder* decoder, int32_t quality, const uint8_t* pixels, uint32_t ignored,
                                           uint8_t* buffer, int32_t capacity, int32_t withMarkers, int32_t doubleRows);

/** Writes the frame that was taken out of the stream or compressed last to an open stream as a JPEG image, without compressing it
 *  again; even if it was hidden or couldn't be decoded. JDEC_Get_Quality then gives the quality of a frame that was not JFIF. The
 *  stream must belong to the same C runtime. Gives the bytes of the last write: 2 if the image is complete. Gives 0, and
 *  writes nothing, for a null argument or if there is no frame. */
int32_t VELARTO_CDECL JDEC_Write_JFIF_File(JdecDecoder* decoder, FILE* stream);

/* ---- The window ---------------------------------------------------------------------------------------------- */

/** Stores rect (left, top, right, bottom) and shows the current picture again, as a paint message asks for. Gives the
 *  decoder's source rectangle, or null if either argument is null. */
int32_t* VELARTO_CDECL JDEC_Access_SrcRect(JdecDecoder* decoder, const int32_t* rect);

/** Gives the decoder's destination rectangle, (0, 0, width, height) with the size given to JDEC_New, or null if either
 *  argument is null. rect is not read. */
int32_t* VELARTO_CDECL JDEC_Access_DstRect(JdecDecoder* decoder, const int32_t* rect);

/** Installs the palette of an 8-bit screen again, as the system's palette messages ask for. Does nothing on other screens or
 *  without a display. */
void VELARTO_CDECL JDEC_reload_palette(JdecDecoder* decoder);

/* ---- Overlays ------------------------------------------------------------------------------------------------ */

/* Overlays lie over the picture in the window; the exported picture doesn't contain them. They are shown in the DirectDraw form
 * of the display only; in the GDI form the operations give the same results and nothing is drawn. Without a display there is
 * nothing to draw on or to set: these operations have no effect, except JDEC_enable_MD and JDEC_set_MD_color, and give 0 if they
 * have a result. What a call draws is shown with the next frame or repaint. A change of the picture's size clears what was drawn
 * and set; the modes of JDEC_enable_MD and the draw callback stay. Coordinates may be any numbers: what lies outside the picture
 * is not drawn. */

/** Shows the motion-area layer if value is not 0; 0 hides it without erasing it. Bit 1 of value (mask 2) turns on the rectangle
 *  mode of the whole process, in which the moving rectangle can be shown and lines don't overwrite the layer's red. A value other
 *  than 0 without that bit turns the mode off. */
void VELARTO_CDECL JDEC_enable_MD(JdecDecoder* decoder, int32_t value);

/** Sets the colour of the outline that JDEC_set_MD_area_2 draws, for the whole process: 0 red, otherwise blue. It is red again
 *  when a display is made, and with each frame that shows a PTZ or position bitmap. */
void VELARTO_CDECL JDEC_set_MD_color(int32_t which);

/** Marks a cell of the grid with a hatch, or clears it if marked is 0. column is clamped to 0 to 19, row to 0 to 14. Cells are 16
 *  by 16 pixels of the picture, 32 by 32 at 640x480, 32 by 16 in other pictures 640 wide. */
void VELARTO_CDECL JDEC_set_MD_area(JdecDecoder* decoder, int32_t column, int32_t row, int32_t marked);

/** Dims the whole picture except an outlined rectangle. It is given in picture pixels, at 640x240 as for 480 rows. If it goes
 *  over the right or bottom edge, it is moved back into the picture. The grid and marked cells are erased. The last argument is
 *  not used. */
void VELARTO_CDECL JDEC_set_MD_area_2(JdecDecoder* decoder, int32_t left, int32_t top, int32_t width, int32_t height,
                                      int32_t unused);

/** Moves the rectangle, or removes it if hide is not 0. It is given for a picture of 320 by 240; in pictures 640 wide it is
 *  scaled up. Works only in the rectangle mode of JDEC_enable_MD. */
void VELARTO_CDECL JDEC_show_rectangle(JdecDecoder* decoder, int32_t x, int32_t y, int32_t width, int32_t height, int32_t hide);

/** Shows a bitmap at the picture's lower right, 20 rows above its bottom, while the motion-area layer is off. Black is
 *  transparent. Of a bitmap higher than 120 rows or wider than the picture, the upper left part is used. A bitmap that was stored
 *  is deleted: the handle is no longer the caller's. Null removes the bitmap. */
void VELARTO_CDECL JDEC_set_ptz_bmp(JdecDecoder* decoder, VelartoBitmap bitmap);

/** Shows a bitmap over the whole picture, while the motion-area layer is off and no PTZ bitmap is set. Black is transparent. A
 *  larger bitmap is clipped; nothing is shown around a smaller one. Gives 1 if it was stored, and it is deleted then. Otherwise
 *  gives 0, and the bitmap stays the caller's. Null removes the bitmap and gives 0. */
int32_t VELARTO_CDECL JDEC_set_pos_bmp(JdecDecoder* decoder, VelartoBitmap bitmap);

/** Sets the callback that is called, on the thread that shows, after each frame that DirectDraw has shown; null for none. The
 *  callback may register another one. It stays registered when the picture's size changes. Any thread may register a callback
 *  while another one uses the decoder; a call of the previous callback may still be running then. */
void VELARTO_CDECL JDEC_register_draw_callback(JdecDecoder* decoder, VelartoDrawCallback callback, uintptr_t user);

/** Shows (not 0) or hides the caption and the rectangle of the motion search, which are drawn in red into each shown frame. This
 *  and the next two give 1; 0 without a decoder or display. */
int32_t VELARTO_CDECL JDEC_SetMotionSeachEnable(JdecDecoder* decoder, int32_t enable);

/** Sets the rectangle of the motion search, in picture pixels. */
int32_t VELARTO_CDECL JDEC_SetMotionSeachArea(JdecDecoder* decoder, int32_t left, int32_t top, int32_t right, int32_t bottom);

/** Sets the caption of the motion search, at most 255 characters of text, centred at the picture's top. 0 for a null text too. */
int32_t VELARTO_CDECL JDEC_SetMotionSeachString(JdecDecoder* decoder, const char* text);

/* ---- The plug-in ----------------------------------------------------------------------------------------------- */

/* A browser loads the library and calls these in order. Its tables stay its own and must exist until NP_Shutdown. Each instance
 * that it makes through the table owns a decoder, at pdata. All calls are made on the thread of the instances' windows. */

/** Tables of functions, in the layout of the browser's plug-in interface. */
struct NPPluginFuncs;
struct NPNetscapeFuncs;

/** Fills the table with the plug-in's functions, version 9 of the interface. Its size field stays. Gives 0; 3 for null. */
int16_t VELARTO_STDCALL NP_GetEntryPoints(struct NPPluginFuncs* table);

/** Takes the browser's table and starts the library. Gives 0; 3 for null; 8 for a browser whose major version is above 0; 4 if
 *  the library can't be started. */
int16_t VELARTO_STDCALL NP_Initialize(struct NPNetscapeFuncs* table);

/** Ends what NP_Initialize started. Instances must have been destroyed. Gives 0. */
int16_t VELARTO_STDCALL NP_Shutdown(void);

/* ---- The vb_JDEC_ family --------------------------------------------------------------------------------------- */

/* The operations of the same name without vb_, with the calling convention __stdcall. The two without the status word don't check
 * the hidden text. */
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

/* The JDEC_ operations of the same meaning. With a null decoder they do nothing and give 0 or null. */
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

/** JDEC_Receive_Data without a check of the hidden text. For a null decoder it gives 0, not -1. */
int32_t VELARTO_CDECL decoder_receive_data(JdecDecoder* decoder, int32_t length, const uint8_t* data);

/** Stores a speed and its factor in the decoder, and writes both to standard output. The factor is the speed, or 1 / n for a
 *  speed of -n. Frames are not paced by it. Gives 1; 0 for a null decoder. */
int32_t VELARTO_CDECL decoder_set_speed(JdecDecoder* decoder, int32_t speed);

/** Writes the 18 characters of the stream's MIME type and a zero to buffer. Null is allowed. */
void VELARTO_CDECL decoder_get_mime_string(char* buffer);

/** Gives 1: every frame is a complete picture. Arguments that a caller passes are ignored, here and in the next two. */
int32_t VELARTO_CDECL decoder_is_intra_frame(void);

/** Gives -1. */
int32_t VELARTO_CDECL decoder_match_bitstream_header_pattern(void);

/** Does nothing. */
void VELARTO_CDECL decoder_enable_regulation(void);

#ifdef __cplusplus
}
#endif

#endif
