// VCULibraryXML_Item: the base of the items a report library page holds.
//
// An item is an image (VCULibraryXML_ItemImage), a plain text
// (VCULibraryXML_ItemText) or a table (VCULibraryXML_ItemTable); GetType
// tells which, so a reader can cast to the derived class:
//
//   const VCULibraryXML_Item* item = page->GetItem(0);
//   if (item->GetType() == VTLibraryXMLItemType::Text) {
//     const VCString& text = static_cast<const VCULibraryXML_ItemText*>(item)->GetText();
//   }
//
// Every item may carry a title (UTF-8; "" when it has none), written as the
// "title" attribute of its element. Ownership: a page that an item is
// appended to deletes it through this virtual destructor.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>

// The kinds of item, named by their element in the file.
enum class VTLibraryXMLItemType : int32_t {
  Image = 1,  // "Image"
  Text = 2,   // "Text"
  Table = 3,  // "Table"
};

class UTILKIT_API VCULibraryXML_Item {
 public:
  virtual ~VCULibraryXML_Item();
  VCULibraryXML_Item(const VCULibraryXML_Item&) = delete;
  VCULibraryXML_Item& operator=(const VCULibraryXML_Item&) = delete;

  // The kind of item; never fails.
  virtual VTLibraryXMLItemType GetType() const = 0;
  // The title ("" for none); null `title` counts as "". Never fails.
  void SetTitle(const char* title) { m_title = title; }
  const VCString& GetTitle() const { return m_title; }

 protected:
  VCULibraryXML_Item() = default;

 private:
  VCString m_title;
};
