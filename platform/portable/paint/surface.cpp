#include "platform/portable/paint/ddraw.h"
#include "platform/portable/paint/objects.h"
#include "platform/portable/paint/screen.h"
#include "platform/portable/system/seam.h"
#include "platform/portable/window/window.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

constexpr int32_t MostSide = 65535;

bool Is_Lost(const IDirectDrawSurface* surface) { return surface->losses != screenState.losses; }

/** Lays the rows out in memory of the surface's own, black. False without memory. */
bool Make_Rows(IDirectDrawSurface* surface) {
  PixelView& view = surface->view;
  const size_t used = Pixel_Row_Bytes(view), pitch = ((used + 3) & ~size_t{3}) + GuardBytes;
  const size_t bytes = pitch * (static_cast<size_t>(view.height) + 2 * GuardRows);
  surface->memory = static_cast<uint8_t*>(std::calloc(bytes, 1));
  if (!surface->memory) return false;
  Fill_Guards(surface->memory, bytes, pitch, used);
  view.pitch = static_cast<ptrdiff_t>(pitch);
  view.pixels = surface->memory + GuardRows * pitch;
  return true;
}

void Clear_Pixels(const PixelView& view) {
  for (int32_t y = 0; y < view.height; ++y) std::memset(view.pixels + y * view.pitch, 0, Pixel_Row_Bytes(view));
}

/** The step's own failure, or the reason why the surface can't be used now. With `waits`, a busy blitter is none. */
HRESULT Check_Use(const IDirectDrawSurface* surface, RigStep step, bool waits = false) {
  HRESULT code = E_FAIL;
  if (Step_Fails(step, &code) && !(waits && code == DDERR_WASSTILLDRAWING)) return code;
  if (Is_Lost(surface)) return DDERR_SURFACELOST;
  return surface->locked || surface->dc ? DDERR_SURFACEBUSY : DD_OK;
}

HRESULT Check_Create(const DDSURFACEDESC* desc, IDirectDrawSurface** surface) {
  if (!desc || !surface || desc->dwSize != sizeof *desc || !(desc->dwFlags & DDSD_CAPS)) return DDERR_INVALIDPARAMS;
  *surface = nullptr;
  const bool primary = (desc->ddsCaps.dwCaps & DDSCAPS_PRIMARYSURFACE) != 0;
  HRESULT code = E_FAIL;
  if (Step_Fails(primary ? RigStep::CreatePrimary : RigStep::CreateOffscreen, &code)) return code;
  if (primary) return DD_OK;
  const DWORD sides = DDSD_WIDTH | DDSD_HEIGHT;
  if ((desc->dwFlags & sides) != sides || desc->dwWidth - 1 >= MostSide || desc->dwHeight - 1 >= 4 * MostSide)
    return DDERR_INVALIDPARAMS;
  return Screen_Format().bits == 0 ? DDERR_UNSUPPORTED : DD_OK;
}

void Describe_Format(const ColorFormat& format, DDPIXELFORMAT& described) {
  described = {};
  described.dwSize = sizeof described;
  described.dwFlags = DDPF_RGB | (format.bits == 8 ? DDPF_PALETTEINDEXED8 : 0);
  described.dwRGBBitCount = static_cast<DWORD>(format.bits);
  if (format.bits == 8) return;
  described.dwRBitMask = format.redMask;
  described.dwGBitMask = format.greenMask;
  described.dwBBitMask = format.blueMask;
}

DWORD Surface_Caps(const IDirectDrawSurface* surface) {
  if (!surface->primary) return DDSCAPS_OFFSCREENPLAIN | DDSCAPS_VIDEOMEMORY;
  return DDSCAPS_PRIMARYSURFACE | (screenState.setup.primaryInSystemMemory ? DDSCAPS_SYSTEMMEMORY : DDSCAPS_VIDEOMEMORY);
}

/** The arguments of Blt, with null rectangles replaced. */
struct BltPlan {
  IDirectDrawSurface *to, *from;
  RECT target, source;
  bool keyed;
};

HRESULT Check_Rects(const BltPlan& plan) {
  if (!Rect_Within(plan.source, plan.from->view.width, plan.from->view.height)) return DDERR_INVALIDRECT;
  if (plan.to->primary) return Rect_Allowed(plan.target) ? DD_OK : DDERR_INVALIDRECT;
  return Rect_Within(plan.target, plan.to->view.width, plan.to->view.height) ? DD_OK : DDERR_INVALIDRECT;
}

void Copy_To(const PixelView& to, const RECT& target, const BltPlan& plan) {
  PixelCopy copy{to, target, plan.from->view, plan.source, !plan.keyed && to.format.bits != 8};
  std::vector<uint8_t> taken;
  if (plan.to == plan.from && !Rect_Is_Empty(Rect_Common(plan.target, plan.source))) {
    // The source is copied first: the copy would write over it.
    const uint8_t* first = copy.from.pixels + plan.source.top * copy.from.pitch;
    taken.assign(first, first + (plan.source.bottom - plan.source.top) * copy.from.pitch);
    copy.from.pixels = taken.data();
    copy.source.bottom -= copy.source.top;
    copy.source.top = 0;
  }
  if (plan.keyed) {
    Copy_Pixels_Keyed(copy, plan.from->key.dwColorSpaceLowValue, plan.from->key.dwColorSpaceHighValue);
  } else if (Formats_Equal(copy.to.format, copy.from.format) && !copy.smooth) {
    Copy_Pixels_Keyed(copy, UINT32_MAX, 0);
  } else {
    Copy_Pixels(copy);
  }
}

/** Copies to the primary surface, that is to the clipper's window. */
void Copy_To_Screen(const BltPlan& plan) {
  HWND window = Surface_Window(plan.to);
  const Canvas canvas = Canvas_Of(window);
  if (!canvas.view.pixels) return;
  RECT target = plan.target;
  OffsetRect(&target, -canvas.origin.x, -canvas.origin.y);
  Copy_To(canvas.view, target, plan);
  Canvas_Changed(window);
}

void Replace_Clipper(IDirectDrawSurface* surface, IDirectDrawClipper* clipper) {
  if (clipper) ++clipper->references;
  if (surface->clipper) IDirectDrawClipper_Release(surface->clipper);
  surface->clipper = clipper;
}

void Replace_Palette(IDirectDrawSurface* surface, IDirectDrawPalette* palette) {
  if (palette) ++palette->references;
  if (surface->palette) IDirectDrawPalette_Release(surface->palette);
  surface->palette = palette;
}

}  // namespace

HWND Surface_Window(const IDirectDrawSurface* surface) {
  HWND window = surface->clipper ? surface->clipper->window : nullptr;
  return IsWindow(window) ? window : nullptr;
}

size_t Pixel_Row_Bytes(const PixelView& view) {
  return static_cast<size_t>(view.width) * static_cast<size_t>(view.format.bits / 8);
}

HRESULT IDirectDraw_CreateSurface(IDirectDraw* ddraw, DDSURFACEDESC* desc, IDirectDrawSurface** surface, IUnknown*) {
  if (!ddraw->leveled) return DDERR_NOCOOPERATIVELEVELSET;
  const HRESULT result = Check_Create(desc, surface);
  if (FAILED(result)) return result;
  const bool primary = (desc->ddsCaps.dwCaps & DDSCAPS_PRIMARYSURFACE) != 0;
  if (!primary && Step_Fails(RigStep::CreateOffscreenNull)) return DD_OK;
  auto* made = new (std::nothrow) IDirectDrawSurface{};
  if (!made) return DDERR_OUTOFMEMORY;
  made->references = 1;
  made->primary = primary;
  made->losses = screenState.losses;
  made->view.format = Screen_Format();
  made->view.width = primary ? screenState.setup.width : static_cast<int32_t>(desc->dwWidth);
  made->view.height = primary ? screenState.setup.height : static_cast<int32_t>(desc->dwHeight);
  if (!primary && !Make_Rows(made)) {
    delete made;
    return DDERR_OUTOFMEMORY;
  }
  Object_Made();
  *surface = made;
  return DD_OK;
}

HRESULT IDirectDrawSurface_GetSurfaceDesc(IDirectDrawSurface* surface, DDSURFACEDESC* desc) {
  HRESULT code = E_FAIL;
  if (!desc || desc->dwSize != sizeof *desc) return DDERR_INVALIDPARAMS;
  if (surface->primary && Step_Fails(RigStep::DescribePrimary, &code)) return code;
  *desc = {};
  desc->dwSize = sizeof *desc;
  desc->dwFlags = DDSD_CAPS | DDSD_WIDTH | DDSD_HEIGHT | DDSD_PITCH | DDSD_PIXELFORMAT;
  desc->dwWidth = static_cast<DWORD>(surface->view.width);
  desc->dwHeight = static_cast<DWORD>(surface->view.height);
  desc->lPitch = static_cast<LONG>(surface->view.pitch);
  desc->ddsCaps.dwCaps = Surface_Caps(surface);
  Describe_Format(surface->view.format, desc->ddpfPixelFormat);
  return DD_OK;
}

HRESULT IDirectDrawSurface_SetClipper(IDirectDrawSurface* surface, IDirectDrawClipper* clipper) {
  HRESULT code = E_FAIL;
  if (Step_Fails(RigStep::SetClipper, &code)) return code;
  Replace_Clipper(surface, clipper);
  return DD_OK;
}

HRESULT IDirectDrawSurface_SetColorKey(IDirectDrawSurface* surface, DWORD flags, DDCOLORKEY* key) {
  if (flags != DDCKEY_SRCBLT) return DDERR_INVALIDPARAMS;
  surface->keyed = key != nullptr;
  if (key) surface->key = *key;
  return DD_OK;
}

HRESULT IDirectDrawSurface_SetPalette(IDirectDrawSurface* surface, IDirectDrawPalette* palette) {
  Replace_Palette(surface, palette);
  if (!surface->primary || !palette || screenState.setup.bits != 8) return DD_OK;
  Install_Colors(palette->colors, 256);
  return DD_OK;
}

HRESULT IDirectDrawSurface_Lock(IDirectDrawSurface* surface, RECT* rect, DDSURFACEDESC* desc, DWORD flags, HANDLE) {
  if (!desc || desc->dwSize != sizeof *desc || (flags & ~(DDLOCK_WAIT | DDLOCK_READONLY))) return DDERR_INVALIDPARAMS;
  if (surface->primary) return DDERR_CANTLOCKSURFACE;
  const HRESULT result = Check_Use(surface, RigStep::LockOffscreen, (flags & DDLOCK_WAIT) != 0);
  if (FAILED(result)) return result;
  const PixelView& view = surface->view;
  const RECT area = rect ? *rect : RECT{0, 0, view.width, view.height};
  if (!Rect_Within(area, view.width, view.height)) return DDERR_INVALIDRECT;
  IDirectDrawSurface_GetSurfaceDesc(surface, desc);
  desc->dwFlags |= DDSD_LPSURFACE;
  desc->lpSurface = Step_Fails(RigStep::LockWithoutPixels) ? nullptr : Pixel_At(view, area.left, area.top);
  surface->locked = true;
  return DD_OK;
}

HRESULT IDirectDrawSurface_Unlock(IDirectDrawSurface* surface, LPVOID) {
  if (!surface->locked) return DDERR_NOTLOCKED;
  surface->locked = false;
  return DD_OK;
}

HRESULT IDirectDrawSurface_Blt(IDirectDrawSurface* surface, RECT* rect, IDirectDrawSurface* source, RECT* sourceRect, DWORD flags,
                               DDBLTFX*) {
  if (!source || source->primary || (flags & ~(DDBLT_KEYSRC | DDBLT_WAIT))) return DDERR_INVALIDPARAMS;
  const RigStep step = surface->primary ? RigStep::BltPrimary : RigStep::BltOffscreen;
  HRESULT result = Check_Use(surface, step, (flags & DDBLT_WAIT) != 0);
  if (FAILED(result)) return result;
  if (Is_Lost(source)) return DDERR_SURFACELOST;
  if (source->locked || source->dc) return DDERR_SURFACEBUSY;
  BltPlan plan{surface,
               source,
               {0, 0, surface->view.width, surface->view.height},
               {0, 0, source->view.width, source->view.height},
               (flags & DDBLT_KEYSRC) != 0};
  if (rect) plan.target = *rect;
  if (sourceRect) plan.source = *sourceRect;
  result = Check_Rects(plan);
  if (FAILED(result)) return result;
  if (plan.keyed && !source->keyed) return DDERR_INVALIDPARAMS;
  if (surface->primary) {
    Copy_To_Screen(plan);
  } else {
    Copy_To(surface->view, plan.target, plan);
  }
  return DD_OK;
}

HRESULT IDirectDrawSurface_GetDC(IDirectDrawSurface* surface, HDC* dc) {
  if (!dc) return DDERR_INVALIDPARAMS;
  *dc = nullptr;
  const HRESULT result = Check_Use(surface, RigStep::SurfaceGetDC);
  if (FAILED(result)) return result;
  surface->dc = *dc = Dc_Make(nullptr, surface);
  return *dc ? DD_OK : DDERR_OUTOFMEMORY;
}

HRESULT IDirectDrawSurface_ReleaseDC(IDirectDrawSurface* surface, HDC dc) {
  if (!dc || surface->dc != dc) return DDERR_NODC;
  surface->dc = nullptr;
  Dc_End(dc);
  return DD_OK;
}

HRESULT IDirectDrawSurface_Restore(IDirectDrawSurface* surface) {
  HRESULT code = E_FAIL;
  if (Step_Fails(surface->primary ? RigStep::RestorePrimary : RigStep::RestoreOffscreen, &code)) return code;
  if (Is_Lost(surface) && !surface->primary) Clear_Pixels(surface->view);
  surface->losses = screenState.losses;
  return DD_OK;
}

HRESULT IDirectDrawSurface_IsLost(IDirectDrawSurface* surface) { return Is_Lost(surface) ? DDERR_SURFACELOST : DD_OK; }

ULONG IDirectDrawSurface_Release(IDirectDrawSurface* surface) {
  const ULONG left = --surface->references;
  if (left > 0) return left;
  if (surface->dc) Dc_End(surface->dc);
  Replace_Clipper(surface, nullptr);
  Replace_Palette(surface, nullptr);
  std::free(surface->memory);
  delete surface;
  Object_Ended();
  return 0;
}
