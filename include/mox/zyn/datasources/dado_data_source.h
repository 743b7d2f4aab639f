#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/core/plugin_base.h"

class moxDataSource;
class moxFilterSpecification;
class moxXMLNode;

/// A member of a group: a source that it holds, or the name of one elsewhere, under the name by
/// which the group's other members know it. Registered as "moxDadoDataSource".
class moxDadoDataSource : public virtual moxPluginBase {
 public:
  /// A link from a column of this member to a column of another one.
  struct Relation {
    std::string dataSource;  // the other member
    std::string columnName;  // its column
    std::string tableNameOrigin;
    std::string columnNameOrigin;
    std::string tableName;
    std::string column;  // this member's, as its query calls it
  };

  virtual void setDataSourceRelation(Relation const& relation) = 0;
  virtual Relation getDataSourceRelation() const = 0;

  /// Holds the source itself; the member is then no longer external.
  virtual void setDataSource(std::shared_ptr<moxDataSource> dataSource) = 0;

  /// The source that is held here; empty for an external member and for one without a source.
  virtual std::shared_ptr<moxDataSource> getDataSource() = 0;

  /// The source in force: the one held, or else the external one, looked up for the calling
  /// thread's session on every call. Empty for a member without a source. Throws moxError "Fonte de
  /// dados externa inválida" when the name is unknown or names no source.
  virtual std::shared_ptr<moxDataSource const> getDataSource() const = 0;

  /// False, and nothing changes, for an empty node. Throws moxError for a member that cannot be
  /// read, moxPluginNotFound for a source of an unknown kind.
  virtual bool load(std::shared_ptr<moxXMLNode> node) = 0;
  virtual bool save(std::shared_ptr<moxXMLNode> node) const = 0;

  /// The member's name in its group.
  virtual std::string getName() const = 0;
  virtual void setName(std::string const& name) = 0;

  /// The name of the source that is not held here; empty when it is held.
  virtual std::string dataSourceExterno() const = 0;

  /// Names a source elsewhere. Throws moxError "Fonte de dados externa não definida" for an empty
  /// name, and "Fonte de dados externa inválida" for one that is unknown or names no source.
  virtual void setDataSourceExterno(std::string const& name) = 0;

  /// Which member of the group stands for an input of the source: pairs (name in the source's
  /// definition, member).
  virtual void setDataSourceExternalRelation(
      std::vector<std::pair<std::string, std::string>> const& relations) = 0;
  virtual std::vector<std::pair<std::string, std::string>> getDataSourceExternalRelation()
      const = 0;

  /// Whether its filters are asked for on the group's own screen.
  virtual void setUnificarTelaFiltro(bool unificar) = 0;
  virtual bool getUnificarTelaFiltro() const = 0;

  /// The filters of the source in force; empty without a source. Throws as getDataSource does.
  virtual std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const = 0;

  /// Reads from this source from now on, which others own as well.
  virtual void setDataSource(std::shared_ptr<moxDataSource const> dataSource) = 0;
};
