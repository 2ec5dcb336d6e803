// VCULibraryXML_Page: one page of a report library, a title and items in order.
//
//   auto* page = new VCULibraryXML_Page("Run 12");
//   page->AppendItem(note);   // any VCULibraryXML_Item made with new
//   library.AppendPage(page); // the library owns the page now
//
// In the file a page is a "Page" element (attribute "title") holding its
// items' elements in order.
//
// Ownership: the page owns the items appended to it and deletes them with
// itself; pointers from GetItem stay valid until then.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_array.h>
#include <utilkit/base/vc_string.h>
#include <utilkit/library_xml/library_xml_item.h>

class UTILKIT_API VCULibraryXML_Page {
 public:
  // A page titled `title` (UTF-8; null counts as "").
  explicit VCULibraryXML_Page(const char* title = nullptr) : m_title(title) {}
  ~VCULibraryXML_Page();
  VCULibraryXML_Page(const VCULibraryXML_Page&) = delete;
  VCULibraryXML_Page& operator=(const VCULibraryXML_Page&) = delete;

  void SetTitle(const char* title) { m_title = title; }
  const VCString& GetTitle() const { return m_title; }

  // Appends `item` and takes it over. False for a null item, and with
  // -655577 when memory runs out (the item is then deleted).
  bool AppendItem(VCULibraryXML_Item* item);
  int32_t GetNumItems() const { return m_items.GetSize(); }
  // The item at `index` (from 0); null out of range.
  VCULibraryXML_Item* GetItem(int32_t index) const {
    return index >= 0 && index < GetNumItems() ? m_items.GetAt(index) : nullptr;
  }

 private:
  VCString m_title;
  VCArray<VCULibraryXML_Item*> m_items;
};
