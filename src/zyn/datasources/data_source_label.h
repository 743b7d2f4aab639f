#pragma once

#include <algorithm>
#include <cstddef>

#include "zyn/frame/plugin_containers.h"

/// A text that is a template's argument. The argument lives as long as the program, and so do its
/// bytes.
template <std::size_t Size>
struct LabelText {
  // Implicit, so that a literal can be the argument.
  constexpr LabelText(char const (&text)[Size]) { std::copy_n(text, Size, bytes); }

  char bytes[Size] = {};
};

/// The permissions of a class whose kind users know by a label.
template <LabelText Label>
struct LabelledAs {
  static moxPluginPermissions const* get() {
    static constexpr moxPluginPermissions kPermissions{Label.bytes, {}};
    return &kPermissions;
  }
};

// What users call the kinds of sources. To be seen by whoever makes a container of the class.

class SQLDataSource;

template <>
struct PluginPermissionsOf<SQLDataSource> : LabelledAs<"Consulta SQL"> {};

class AggregationDataSource;

template <>
struct PluginPermissionsOf<AggregationDataSource> : LabelledAs<"Sumarização"> {};

class SorterDataSource;

template <>
struct PluginPermissionsOf<SorterDataSource> : LabelledAs<"Ordenação"> {};

class ObjectDataSource;

template <>
struct PluginPermissionsOf<ObjectDataSource> : LabelledAs<"Execução SQL"> {};

class UnionDataSource;

template <>
struct PluginPermissionsOf<UnionDataSource> : LabelledAs<"União"> {};

class ExpressionDataSource;

template <>
struct PluginPermissionsOf<ExpressionDataSource> : LabelledAs<"Expressão"> {};

class DataSourcePivoting;

template <>
struct PluginPermissionsOf<DataSourcePivoting> : LabelledAs<"Pivô"> {};

class JoinDataSource;

template <>
struct PluginPermissionsOf<JoinDataSource> : LabelledAs<"Join"> {};

class FilterDataSource;

template <>
struct PluginPermissionsOf<FilterDataSource> : LabelledAs<"Filtro"> {};

class ManageFilterDataSource;

template <>
struct PluginPermissionsOf<ManageFilterDataSource> : LabelledAs<"Gerenciador de Filtro"> {};

class GroupDataSource;

template <>
struct PluginPermissionsOf<GroupDataSource> : LabelledAs<"Grupo"> {};
