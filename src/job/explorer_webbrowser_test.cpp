#include "job/explorer_webbrowser.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// A control that notes what it is asked to do.
class FakeControl : public IDispatch {
 public:
  virtual ~FakeControl() = default;
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT*,
                                   EXCEPINFO*, UINT*) override {
    EXPECT_EQ(member, 104) << "Navigate";
    EXPECT_EQ(flags, DISPATCH_METHOD);
    EXPECT_EQ(parameters->cNamedArgs, 0U);
    EXPECT_EQ(parameters->cArgs, 5U);
    // In reverse order.
    for (int i = 0; i < 4; ++i) EXPECT_EQ(parameters->rgvarg[i].vt, VT_EMPTY) << i;
    EXPECT_EQ(parameters->rgvarg[4].vt, VT_BSTR);
    url = parameters->rgvarg[4].bstrVal;
    return result;
  }

  std::wstring url;
  HRESULT result = S_OK;
};

TEST(Preview, NavigatesToAPage) {
  FakeControl control;
  EXPECT_TRUE(NavigateControl(control, "d:\\my maps\\citt\xE0.html"));
  EXPECT_EQ(control.url, L"d:\\my maps\\citt\x00E0.html");
  control.result = E_FAIL;
  EXPECT_FALSE(NavigateControl(control, "d:\\b.html"));
}

TEST(Preview, NavigatesNowhereWithoutAControl) {
  CExplorer_webbrowser browser;
  EXPECT_FALSE(browser.Navigate("d:\\b.html"));
}

}  // namespace
