#include <utilkit/properties/user_defined_properties.h>

#include <utilkit/base/error_report.h>
#include <utilkit/properties/properties_errors.h>

#include <cassert>
#include <memory>

namespace {

template <class P>
bool CopyTyped(const R5Property& source, R5Property& target) {
  const auto& from = static_cast<const P&>(source);
  auto& to = static_cast<P&>(target);
  if (!from.IsDefined()) return to.SetDefined(false);
  return to.Set(from.Get());
}

}  // namespace

bool VCUUserDefinedProperties::SetPropDef(const VCString& text) {
  return KeepDecoded(DecodeUserPropDef(text, m_record.set));
}

bool VCUUserDefinedProperties::SetPropDef(const DOM_Node& root) {
  return KeepDecoded(DecodeUserPropDef(root, m_record.set));
}

bool VCUUserDefinedProperties::KeepDecoded(bool decoded) {
  if (decoded) {
    m_record.definition = EncodeUserPropDef(m_record.set);
    if (!m_record.definition.IsEmpty()) return true;
  }
  m_record.definition.Empty();
  m_record.set.Clear();
  return false;
}

const VCString& VCUUserDefinedProperties::GetPropDef() const {
  return m_record.definition;
}

VCStringArray VCUUserDefinedProperties::GetPropertyNames() const {
  VCStringArray names;
  for (int32_t i = 0; i < m_record.set.GetCount(); ++i) {
    names.Add(m_record.set.GetProperty(i)->GetName());
  }
  return names;
}

const R5PropertySet& VCUUserDefinedProperties::GetPropertySet() const {
  return m_record.set;
}

bool VCUUserDefinedProperties::ValidateMandatoryInSet(R5PropertySet* set) const {
  assert(set);
  if (!set) return false;
  for (int32_t i = 0; i < m_record.set.GetCount(); ++i) {
    const VCString& name = m_record.set.GetProperty(i)->GetName();
    const R5Property* property = set->GetProperty(name);
    if (!property || ((property->GetFlags() & R5Property::m_nMandatoryMask) &&
                      (!(property->GetFlags() & R5Property::m_nDefinedMask) ||
                       property->GetValueText().IsEmpty()))) {
      VFReportError(kPropertiesErrorMandatory, "VCUUserDefinedProperties::ValidateMandatoryInSet",
                    name);
      return false;
    }
  }
  return true;
}

bool VCUUserDefinedProperties::UpdateUserDefinedPropsInSet(R5PropertySet* set,
                                                           VCStringArray& names) const {
  assert(set);
  if (!set) return false;
  for (const VCString& name : names) {
    if (!m_record.set.GetProperty(name)) set->RemoveProperty(name);
  }
  for (int32_t i = 0; i < m_record.set.GetCount(); ++i) {
    std::unique_ptr<R5Property> fresh;
    try {
      fresh = m_record.set.GetProperty(i)->Clone();
    } catch (...) {
      return false;
    }
    const R5Property* old = set->GetProperty(fresh->GetName());
    if (old && old->GetType() == fresh->GetType()) CopyPropertyValue(old, fresh.get());
    if (!set->Add(*fresh)) return false;
  }
  names = GetPropertyNames();
  return true;
}

void VCUUserDefinedProperties::UpdateDescriptions(R5PropertySet* set) const {
  assert(set);
  if (!set) return;
  for (int32_t i = 0; i < m_record.set.GetCount(); ++i) {
    const R5Property& definition = *m_record.set.GetProperty(i);
    R5Property* property = set->GetProperty(definition.GetName());
    if (!property) continue;
    property->SetDescription(definition.GetDescription());
    property->SetHelp(definition.GetHelp());
  }
}

bool VCUUserDefinedProperties::CopyPropertyValue(const R5Property* source, R5Property* target) {
  assert(source && target);
  if (!source || !target) return false;
  constexpr const char* kLocation = "VCUUserDefinedProperties::CopyPropertyValue";
  if (source->GetType() != target->GetType()) {
    VFReportError(kPropertiesErrorCopyTypes, kLocation);
    return false;
  }
  switch (source->GetType()) {
    case R5PropertyType::kString:
      return CopyTyped<R5StringProperty>(*source, *target);
    case R5PropertyType::kLong:
      return CopyTyped<R5LongProperty>(*source, *target);
    case R5PropertyType::kHuge:
      return CopyTyped<R5HugeProperty>(*source, *target);
    case R5PropertyType::kFloat:
      return CopyTyped<R5FloatProperty>(*source, *target);
    case R5PropertyType::kDouble:
      return CopyTyped<R5DoubleProperty>(*source, *target);
    case R5PropertyType::kEnum:
      return CopyTyped<R5EnumProperty>(*source, *target);
    case R5PropertyType::kBoolean:
      return CopyTyped<R5BooleanProperty>(*source, *target);
    default:
      VFReportError(kPropertiesErrorType, kLocation,
                    VCString::Formatted("%d", static_cast<int32_t>(source->GetType())));
      return false;
  }
}
