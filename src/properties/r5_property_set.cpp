#include <utilkit/properties/r5_property_set.h>

#include <utility>

R5PropertySet::~R5PropertySet() {
  Clear();
}

int32_t R5PropertySet::Find(const char* name) const {
  if (!name) return -1;
  try {
    const auto it = m_index.find(name);
    return it == m_index.end() ? -1 : it->second;
  } catch (...) {
    return -1;  // no memory for the key
  }
}

bool R5PropertySet::Reindex() {
  try {
    m_index.clear();
    m_index.reserve(static_cast<size_t>(GetCount()));
    for (int32_t i = 0; i < GetCount(); ++i) m_index.emplace(m_properties[i]->GetName().c_str(), i);
    return true;
  } catch (...) {
    m_index.clear();
    return false;
  }
}

R5Property* R5PropertySet::Insert(std::unique_ptr<R5Property> property) {
  if (!property || property->GetName().IsEmpty()) return nullptr;
  const int32_t index = Find(property->GetName());
  if (index >= 0) {
    delete m_properties[index];
    m_properties[index] = property.release();
    return m_properties[index];
  }
  // Reserve the index slot first, so a failure leaves the set unchanged.
  auto slot = m_index.emplace(property->GetName().c_str(), GetCount()).first;
  if (m_properties.Add(property.get()) < 0) {
    m_index.erase(slot);
    return nullptr;
  }
  return property.release();
}

template <class P, class... Args>
P* R5PropertySet::Create(const char* name, Args... args) {
  try {
    return static_cast<P*>(Insert(std::make_unique<P>(name, args...)));
  } catch (...) {
    return nullptr;
  }
}

bool R5PropertySet::Copy(const R5PropertySet& other) {
  if (&other == this) return true;
  R5PropertySet copy;
  try {
    for (const R5Property* property : other.m_properties) {
      std::unique_ptr<R5Property> clone = property->Clone();
      if (copy.m_properties.Add(clone.get()) < 0) return false;
      clone.release();
    }
  } catch (...) {
    return false;
  }
  if (!copy.Reindex()) return false;
  std::swap(m_properties, copy.m_properties);  // `copy` deletes the old properties
  std::swap(m_index, copy.m_index);
  return true;
}

void R5PropertySet::Clear() {
  for (R5Property* property : m_properties) delete property;
  m_properties.RemoveAll();
  m_index.clear();
}

R5Property* R5PropertySet::GetProperty(int32_t index) {
  return index >= 0 && index < GetCount() ? m_properties[index] : nullptr;
}

const R5Property* R5PropertySet::GetProperty(int32_t index) const {
  return const_cast<R5PropertySet*>(this)->GetProperty(index);
}

R5Property* R5PropertySet::GetProperty(const char* name) {
  return GetProperty(Find(name));
}

const R5Property* R5PropertySet::GetProperty(const char* name) const {
  return const_cast<R5PropertySet*>(this)->GetProperty(name);
}

bool R5PropertySet::RemoveProperty(const char* name) {
  const int32_t index = Find(name);
  if (index < 0) return false;
  delete m_properties[index];
  m_properties.RemoveAt(index);
  m_index.erase(name);
  for (auto& entry : m_index) {
    if (entry.second > index) --entry.second;
  }
  return true;
}

R5StringProperty* R5PropertySet::AddString(const char* name, const char* value) {
  return Create<R5StringProperty>(name, value);
}

R5LongProperty* R5PropertySet::AddLong(const char* name, int32_t value) {
  return Create<R5LongProperty>(name, value);
}

R5HugeProperty* R5PropertySet::AddHuge(const char* name, int64_t value) {
  return Create<R5HugeProperty>(name, value);
}

R5FloatProperty* R5PropertySet::AddFloat(const char* name, float value) {
  return Create<R5FloatProperty>(name, value);
}

R5DoubleProperty* R5PropertySet::AddDouble(const char* name, double value) {
  return Create<R5DoubleProperty>(name, value);
}

R5BooleanProperty* R5PropertySet::AddBoolean(const char* name, bool value) {
  return Create<R5BooleanProperty>(name, value);
}

R5EnumProperty* R5PropertySet::AddEnum(const R5EnumProperty& property) {
  return static_cast<R5EnumProperty*>(Add(property));
}

R5Property* R5PropertySet::Add(const R5Property& property) {
  try {
    return Insert(property.Clone());
  } catch (...) {
    return nullptr;
  }
}

bool R5PropertySet::HasSameDefinitions(const R5PropertySet& other) const {
  if (GetCount() != other.GetCount()) return false;
  for (int32_t i = 0; i < GetCount(); ++i) {
    if (!m_properties[i]->HasSameDefinition(*other.m_properties[i])) return false;
  }
  return true;
}
