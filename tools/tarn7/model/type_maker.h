#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tools/tarn7/values/json.h"
#include "tools/tarn7/values/place.h"
#include "tools/tarn7/values/value_type.h"

namespace tarn7::tool {

/// Makes the types that the records of a model describe. Shapes with parameters are expanded: each use
/// with other arguments is a type of its own.
///
/// What a model can make of it is limited: names have at most 1,000 characters, types nest at most 64 deep, there are
/// at most 10,000 of them, and a value with two elements in each sequence has at most 1,000,000 parts. A shape that
/// expands without end meets the first of them that it can.
class TypeMaker {
 public:
  TypeMaker();
  ~TypeMaker();
  TypeMaker(const TypeMaker&) = delete;
  TypeMaker& operator=(const TypeMaker&) = delete;

  /// Takes the records of the headers, which must live as long as this. Throws ValueError, which names the place,
  /// for what is none.
  void Declare(const Json& headers, const Place& place);
  /// Makes the types of all records but shapes. Throws ValueError.
  void ResolveAll();
  /// A sequence of the record with that name. Throws ValueError.
  const ValueType& SequenceOfRecord(const std::string& name, const Place& place);
  /// What was made.
  std::shared_ptr<const TypeStore> GetStore() const { return store_; }

 private:
  struct Declaration;
  struct Declarations;
  struct Scope;
  class TypeName;

  static void ReadDeclarations(const Json& records, const Place& place, std::size_t depth, Declarations& into);
  /// Throws ValueError for a nested record that has the name of something around it, which is in `outer`, by name.
  static void RequireNewNames(const Declarations& nested, std::map<std::string, std::string>& outer);
  void ResolveAll(const Declarations& declarations, const Scope& scope);
  const ValueType& Resolve(const Json& text, const Scope& scope, const Place& place);
  const ValueType& Resolve(TypeName& name, const Scope& scope);
  const ValueType& Make(const Declaration& declaration, const Scope& scope,
                        const std::vector<const ValueType*>& arguments, const Place& place);
  ValueType Describe(const Declaration& declaration, const Scope& inner);
  void ReadMembers(const Declaration& declaration, const Scope& inner, RecordType& record);
  const ValueType& Keep(ValueType type, const Place& place);
  const ValueType& Sequence(const ValueType& element, const Place& place);
  const ValueType& Bytes(std::size_t size, const Place& place);

  std::unique_ptr<Declarations> declarations_;
  std::map<std::string, const ValueType*> types_;  // by C++ name; null while it is being made
  std::shared_ptr<TypeStore> store_ = std::make_shared<TypeStore>();
  std::size_t depth_ = 0;
};

}  // namespace tarn7::tool
