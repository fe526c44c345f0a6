#ifndef MIRA_PLATFORM_COM_H_
#define MIRA_PLATFORM_COM_H_

// The COM, OLE automation and WMI types that the library uses: com_types.h and the interfaces of
// WMI. On Windows the interfaces are the system's, too.

#include "platform/com_types.h"

#if !defined(_WIN32)

struct SOLE_AUTHENTICATION_SERVICE;
struct IWbemContext;
struct IWbemCallResult;
struct IWbemObjectSink;
struct IWbemQualifierSet;
struct IWbemServices;

struct IWbemClassObject : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetQualifierSet(IWbemQualifierSet** set) = 0;
  virtual HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type,
                                        LONG* flavor) = 0;
  virtual HRESULT STDMETHODCALLTYPE Put(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE type) = 0;
  virtual HRESULT STDMETHODCALLTYPE Delete(LPCWSTR name) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetNames(LPCWSTR qualifier, LONG flags, VARIANT* value,
                                             SAFEARRAY** names) = 0;
  virtual HRESULT STDMETHODCALLTYPE BeginEnumeration(LONG flags) = 0;
  virtual HRESULT STDMETHODCALLTYPE Next(LONG flags, BSTR* name, VARIANT* value, CIMTYPE* type,
                                         LONG* flavor) = 0;
  virtual HRESULT STDMETHODCALLTYPE EndEnumeration() = 0;
  virtual HRESULT STDMETHODCALLTYPE GetPropertyQualifierSet(LPCWSTR name,
                                                            IWbemQualifierSet** set) = 0;
  virtual HRESULT STDMETHODCALLTYPE Clone(IWbemClassObject** copy) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetObjectText(LONG flags, BSTR* text) = 0;
  virtual HRESULT STDMETHODCALLTYPE SpawnDerivedClass(LONG flags, IWbemClassObject** object) = 0;
  virtual HRESULT STDMETHODCALLTYPE SpawnInstance(LONG flags, IWbemClassObject** object) = 0;
  virtual HRESULT STDMETHODCALLTYPE CompareTo(LONG flags, IWbemClassObject* other) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetPropertyOrigin(LPCWSTR name, BSTR* class_name) = 0;
  virtual HRESULT STDMETHODCALLTYPE InheritsFrom(LPCWSTR ancestor) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR name, LONG flags, IWbemClassObject** in,
                                              IWbemClassObject** out) = 0;
  virtual HRESULT STDMETHODCALLTYPE PutMethod(LPCWSTR name, LONG flags, IWbemClassObject* in,
                                              IWbemClassObject* out) = 0;
  virtual HRESULT STDMETHODCALLTYPE DeleteMethod(LPCWSTR name) = 0;
  virtual HRESULT STDMETHODCALLTYPE BeginMethodEnumeration(LONG flags) = 0;
  virtual HRESULT STDMETHODCALLTYPE NextMethod(LONG flags, BSTR* name, IWbemClassObject** in,
                                               IWbemClassObject** out) = 0;
  virtual HRESULT STDMETHODCALLTYPE EndMethodEnumeration() = 0;
  virtual HRESULT STDMETHODCALLTYPE GetMethodQualifierSet(LPCWSTR name,
                                                          IWbemQualifierSet** set) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetMethodOrigin(LPCWSTR name, BSTR* class_name) = 0;

 protected:
  ~IWbemClassObject() = default;
};

struct IEnumWbemClassObject : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE Reset() = 0;
  virtual HRESULT STDMETHODCALLTYPE Next(LONG timeout, ULONG count, IWbemClassObject** objects,
                                         ULONG* returned) = 0;
  virtual HRESULT STDMETHODCALLTYPE NextAsync(ULONG count, IWbemObjectSink* sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE Clone(IEnumWbemClassObject** copy) = 0;
  virtual HRESULT STDMETHODCALLTYPE Skip(LONG timeout, ULONG count) = 0;

 protected:
  ~IEnumWbemClassObject() = default;
};

struct IWbemServices : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE OpenNamespace(const BSTR name, LONG flags,
                                                  IWbemContext* context, IWbemServices** services,
                                                  IWbemCallResult** result) = 0;
  virtual HRESULT STDMETHODCALLTYPE CancelAsyncCall(IWbemObjectSink* sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE QueryObjectSink(LONG flags, IWbemObjectSink** sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetObject(const BSTR path, LONG flags, IWbemContext* context,
                                              IWbemClassObject** object,
                                              IWbemCallResult** result) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetObjectAsync(const BSTR path, LONG flags,
                                                   IWbemContext* context,
                                                   IWbemObjectSink* sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE PutClass(IWbemClassObject* object, LONG flags,
                                             IWbemContext* context, IWbemCallResult** result) = 0;
  virtual HRESULT STDMETHODCALLTYPE PutClassAsync(IWbemClassObject* object, LONG flags,
                                                  IWbemContext* context, IWbemObjectSink* sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE DeleteClass(const BSTR name, LONG flags, IWbemContext* context,
                                                IWbemCallResult** result) = 0;
  virtual HRESULT STDMETHODCALLTYPE DeleteClassAsync(const BSTR name, LONG flags,
                                                     IWbemContext* context,
                                                     IWbemObjectSink* sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE CreateClassEnum(const BSTR superclass, LONG flags,
                                                    IWbemContext* context,
                                                    IEnumWbemClassObject** objects) = 0;
  virtual HRESULT STDMETHODCALLTYPE CreateClassEnumAsync(const BSTR superclass, LONG flags,
                                                         IWbemContext* context,
                                                         IWbemObjectSink* sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE PutInstance(IWbemClassObject* object, LONG flags,
                                                IWbemContext* context,
                                                IWbemCallResult** result) = 0;
  virtual HRESULT STDMETHODCALLTYPE PutInstanceAsync(IWbemClassObject* object, LONG flags,
                                                     IWbemContext* context,
                                                     IWbemObjectSink* sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE DeleteInstance(const BSTR path, LONG flags,
                                                   IWbemContext* context,
                                                   IWbemCallResult** result) = 0;
  virtual HRESULT STDMETHODCALLTYPE DeleteInstanceAsync(const BSTR path, LONG flags,
                                                        IWbemContext* context,
                                                        IWbemObjectSink* sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE CreateInstanceEnum(const BSTR filter, LONG flags,
                                                       IWbemContext* context,
                                                       IEnumWbemClassObject** objects) = 0;
  virtual HRESULT STDMETHODCALLTYPE CreateInstanceEnumAsync(const BSTR filter, LONG flags,
                                                            IWbemContext* context,
                                                            IWbemObjectSink* sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE ExecQuery(const BSTR language, const BSTR query, LONG flags,
                                              IWbemContext* context,
                                              IEnumWbemClassObject** objects) = 0;
  virtual HRESULT STDMETHODCALLTYPE ExecQueryAsync(const BSTR language, const BSTR query,
                                                   LONG flags, IWbemContext* context,
                                                   IWbemObjectSink* sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE ExecNotificationQuery(const BSTR language, const BSTR query,
                                                          LONG flags, IWbemContext* context,
                                                          IEnumWbemClassObject** objects) = 0;
  virtual HRESULT STDMETHODCALLTYPE ExecNotificationQueryAsync(const BSTR language,
                                                               const BSTR query, LONG flags,
                                                               IWbemContext* context,
                                                               IWbemObjectSink* sink) = 0;
  virtual HRESULT STDMETHODCALLTYPE ExecMethod(const BSTR path, const BSTR method, LONG flags,
                                               IWbemContext* context, IWbemClassObject* in,
                                               IWbemClassObject** out,
                                               IWbemCallResult** result) = 0;
  virtual HRESULT STDMETHODCALLTYPE ExecMethodAsync(const BSTR path, const BSTR method, LONG flags,
                                                    IWbemContext* context, IWbemClassObject* in,
                                                    IWbemObjectSink* sink) = 0;

 protected:
  ~IWbemServices() = default;
};

struct IWbemLocator : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE ConnectServer(const BSTR resource, const BSTR user,
                                                  const BSTR password, const BSTR locale,
                                                  LONG flags, const BSTR authority,
                                                  IWbemContext* context,
                                                  IWbemServices** services) = 0;

 protected:
  ~IWbemLocator() = default;
};

#endif  // !defined(_WIN32)

#endif  // MIRA_PLATFORM_COM_H_
