// Where the progress bar is painted so that it does not flicker: a memory device context, which copies
// itself onto its target when it is destroyed. A target that prints is drawn on directly.
// User-interface thread. The target is the caller's and must outlive this object. When there is no memory
// for the bitmap, the target keeps what it shows.
#ifndef MOSAICON_PROGRESS_PROGRESS_MEM_DC_H_
#define MOSAICON_PROGRESS_PROGRESS_MEM_DC_H_

#include "mfc/dc.h"
#include "mfc/gdi_objects.h"

class CTProgressTimeToCompleteMemDC : public CDC {
 public:
  // Begins with the target's background colour.
  explicit CTProgressTimeToCompleteMemDC(CDC* target);
  ~CTProgressTimeToCompleteMemDC() override;

  // All of these act on this object's own output handle only, whatever the base class would also do to
  // the handle that answers questions.
  BOOL PtVisible(int x, int y) const override;
  BOOL RectVisible(LPCRECT rect) const override;
  BOOL TextOut(int x, int y, LPCSTR text, int count) override;
  BOOL ExtTextOut(int x, int y, UINT options, LPCRECT rect, LPCSTR text, UINT count, LPINT widths) override;
  SIZE TabbedTextOut(int x, int y, LPCSTR text, int count, int tabs, LPINT tabStops, int tabOrigin) override;
  int DrawText(LPCSTR text, int count, LPRECT rect, UINT format) override;
  int DrawTextEx(LPSTR text, int count, LPRECT rect, UINT format, LPDRAWTEXTPARAMS parameters) override;
  BOOL GrayString(HBRUSH brush, GRAYSTRINGPROC output, LPARAM data, int count, int x, int y, int width,
                  int height) override;
  int Escape(int escape, int count, LPCSTR inData, LPVOID outData) override;

 private:
  void CreateBitmap();

  CBitmap m_bitmap;
  HGDIOBJ m_hOldBitmap = nullptr;
  CDC* m_pDC;
  RECT m_rect = {};  // what the target has to paint
  bool m_bMemDC;     // false: the handles are the target's
};

#endif  // MOSAICON_PROGRESS_PROGRESS_MEM_DC_H_
