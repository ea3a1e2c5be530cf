#include "platform/portable/machine.h"
#include "platform/portable/paint/ddraw.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

/** Bytes behind each row that belong to no pixel, and what they hold. Of a large surface many rows are never used: its guards
 * stay zero, so that such rows take no memory. */
constexpr int32_t GuardBytes = 32;
constexpr uint8_t GuardValue = 0xA5;
constexpr size_t LargeStore = size_t{16} << 20;
constexpr int32_t MostSide = 65535;

bool Is_Lost(const IDirectDrawSurface* surface) { return surface->losses != machine.losses; }

size_t Pixel_Row_Bytes(const PixelView& view) {
  return static_cast<size_t>(view.width) * static_cast<size_t>(view.format.bits / 8);
}

void Write_Guards(IDirectDrawSurface* surface, size_t used, size_t pitch) {
  surface->guard = GuardValue;
  std::memset(surface->store, GuardValue, pitch);
  std::memset(surface->store + surface->storeSize - pitch, GuardValue, pitch);
  for (size_t row = pitch; row < surface->storeSize; row += pitch)
    std::memset(surface->store + row + used, GuardValue, pitch - used);
}

/** Lays the rows out in the store, black, with guards behind each, above the first and below the last. False without memory. */
bool Make_Store(IDirectDrawSurface* surface) {
  PixelView& view = surface->view;
  const size_t row = (Pixel_Row_Bytes(view) + 3) & ~size_t{3};
  const size_t pitch = row + GuardBytes;
  surface->storeSize = pitch * (static_cast<size_t>(view.height) + 2);
  surface->store = static_cast<uint8_t*>(std::calloc(surface->storeSize, 1));
  if (!surface->store) return false;
  if (surface->storeSize <= LargeStore) Write_Guards(surface, Pixel_Row_Bytes(view), pitch);
  view.pitch = static_cast<ptrdiff_t>(pitch);
  view.pixels = surface->store + pitch;
  return true;
}

void Clear_Pixels(const PixelView& view) {
  for (int32_t y = 0; y < view.height; ++y) std::memset(view.pixels + y * view.pitch, 0, Pixel_Row_Bytes(view));
}

/** A step that may fail by its own code, then the reasons why no surface would work. */
HRESULT Check_Use(const IDirectDrawSurface* surface, ScreenStep step) {
  HRESULT code = E_FAIL;
  if (Step_Fails(step, &code)) return code;
  if (Is_Lost(surface)) return DDERR_SURFACELOST;
  return surface->locked || surface->dc ? DDERR_SURFACEBUSY : DD_OK;
}

HRESULT Check_Create(const DDSURFACEDESC* desc, IDirectDrawSurface** surface) {
  if (!desc || !surface || desc->dwSize != sizeof *desc || !(desc->dwFlags & DDSD_CAPS)) return DDERR_INVALIDPARAMS;
  *surface = nullptr;
  const bool primary = (desc->ddsCaps.dwCaps & DDSCAPS_PRIMARYSURFACE) != 0;
  HRESULT code = E_FAIL;
  if (Step_Fails(primary ? ScreenStep::CreatePrimary : ScreenStep::CreateOffscreen, &code)) return code;
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
  return DDSCAPS_PRIMARYSURFACE | (machine.setup.primaryInSystemMemory ? DDSCAPS_SYSTEMMEMORY : DDSCAPS_VIDEOMEMORY);
}

/** What Blt is about, with null rectangles replaced. */
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
    // The source is taken aside, as the copy would run over it.
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
  if (!window || !Window_Shows(window)) return;
  const POINT origin = Window_Origin(window);
  RECT target = plan.target;
  target.left -= origin.x, target.right -= origin.x;
  target.top -= origin.y, target.bottom -= origin.y;
  Copy_To(Window_View(window), target, plan);
  Desktop_Pixels_Changed(window);
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
  return surface->clipper ? Window_Find(surface->clipper->window) : nullptr;
}

bool Screen_Surface_Guards_Whole(const IDirectDrawSurface* surface) {
  const PixelView& view = surface->view;
  const size_t pitch = static_cast<size_t>(view.pitch), used = Pixel_Row_Bytes(view);
  if (pitch == 0) return true;
  for (size_t at = 0; at < surface->storeSize; ++at) {
    const bool outerRow = at < pitch || at >= surface->storeSize - pitch;
    if ((outerRow || at % pitch >= used) && surface->store[at] != surface->guard) return false;
  }
  return true;
}

HRESULT IDirectDraw_CreateSurface(IDirectDraw*, DDSURFACEDESC* desc, IDirectDrawSurface** surface, IUnknown*) {
  const HRESULT result = Check_Create(desc, surface);
  if (FAILED(result)) return result;
  const bool primary = (desc->ddsCaps.dwCaps & DDSCAPS_PRIMARYSURFACE) != 0;
  if (!primary && Step_Fails(ScreenStep::CreateOffscreenNull)) return DD_OK;
  auto* made = new (std::nothrow) IDirectDrawSurface{};
  if (!made) return DDERR_OUTOFMEMORY;
  made->references = 1;
  made->primary = primary;
  made->losses = machine.losses;
  made->view.format = Screen_Format();
  made->view.width = primary ? machine.setup.width : static_cast<int32_t>(desc->dwWidth);
  made->view.height = primary ? machine.setup.height : static_cast<int32_t>(desc->dwHeight);
  if (!primary && !Make_Store(made)) {
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
  if (surface->primary && Step_Fails(ScreenStep::DescribePrimary, &code)) return code;
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
  if (Step_Fails(ScreenStep::SetClipper, &code)) return code;
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
  if (!surface->primary || !palette || machine.setup.bits != 8) return DD_OK;
  Install_Colors(palette->colors, 256);
  return DD_OK;
}

HRESULT IDirectDrawSurface_Lock(IDirectDrawSurface* surface, RECT* rect, DDSURFACEDESC* desc, DWORD, HANDLE) {
  if (!desc || desc->dwSize != sizeof *desc) return DDERR_INVALIDPARAMS;
  if (surface->primary) return DDERR_CANTLOCKSURFACE;
  const HRESULT result = Check_Use(surface, ScreenStep::LockOffscreen);
  if (FAILED(result)) return result;
  const PixelView& view = surface->view;
  const RECT area = rect ? *rect : RECT{0, 0, view.width, view.height};
  if (!Rect_Within(area, view.width, view.height)) return DDERR_INVALIDRECT;
  IDirectDrawSurface_GetSurfaceDesc(surface, desc);
  desc->dwFlags |= DDSD_LPSURFACE;
  desc->lpSurface = Step_Fails(ScreenStep::LockWithoutPixels) ? nullptr : Pixel_At(view, area.left, area.top);
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
  if (!source || source->primary) return DDERR_INVALIDPARAMS;
  HRESULT result = Check_Use(surface, surface->primary ? ScreenStep::BltPrimary : ScreenStep::BltOffscreen);
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
  const HRESULT result = Check_Use(surface, ScreenStep::SurfaceGetDC);
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
  if (Step_Fails(surface->primary ? ScreenStep::RestorePrimary : ScreenStep::RestoreOffscreen, &code)) return code;
  if (Is_Lost(surface) && !surface->primary) Clear_Pixels(surface->view);
  surface->losses = machine.losses;
  return DD_OK;
}

HRESULT IDirectDrawSurface_IsLost(IDirectDrawSurface* surface) { return Is_Lost(surface) ? DDERR_SURFACELOST : DD_OK; }

ULONG IDirectDrawSurface_Release(IDirectDrawSurface* surface) {
  const ULONG left = --surface->references;
  if (left > 0) return left;
  if (surface->dc) Dc_End(surface->dc);
  Replace_Clipper(surface, nullptr);
  Replace_Palette(surface, nullptr);
  std::free(surface->store);
  delete surface;
  Object_Ended();
  return 0;
}
