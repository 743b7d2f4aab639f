-- Tables of the school network, in statements that SQLite and MariaDB both take. On MariaDB they belong into a
-- database of the character set utf8mb4; the generator adds that to each of them.
-- A statement ends with a semicolon at the end of its line; tables stand in the order of their references.

-- Units, users and what the application itself keeps.

create table ambiente_unidades (
  id integer not null primary key,
  nome varchar(80) not null,
  cidade varchar(60) not null,
  uf char(2) not null,
  id_unidadematriz integer not null,
  telefone varchar(20),
  email varchar(80),
  endereco varchar(120),
  capacidade integer not null,
  data_abertura date not null,
  observacao text,
  foreign key (id_unidadematriz) references ambiente_unidades (id)
);

create table ambiente_usuarios (
  id integer not null primary key,
  login varchar(60) not null,
  nome varchar(120) not null,
  senha varchar(128),
  id_unidadepadrao integer,
  trabalha_por_unidades integer not null,
  aluno integer not null,
  ativo integer not null,
  criado_em datetime not null,
  unique (login),
  foreign key (id_unidadepadrao) references ambiente_unidades (id)
);

create table ambiente_usuariosunidades (
  id_usuario integer not null,
  id_unidade integer not null,
  primary key (id_usuario, id_unidade),
  foreign key (id_usuario) references ambiente_usuarios (id),
  foreign key (id_unidade) references ambiente_unidades (id)
);

create table ambiente_usuariosbibliotecas (
  id_usuario integer not null,
  biblioteca varchar(40) not null,
  primary key (id_usuario, biblioteca),
  foreign key (id_usuario) references ambiente_usuarios (id)
);

create table ambiente_configuracoes (
  id integer not null primary key,
  modulo varchar(60) not null,
  chave varchar(60) not null,
  id_unidade integer,
  valor text,
  foreign key (id_unidade) references ambiente_unidades (id)
);

create table ambiente_paineisindicador (
  id integer not null primary key,
  descricao varchar(80) not null,
  id_unidadenegociomatriz integer not null,
  foreign key (id_unidadenegociomatriz) references ambiente_unidades (id)
);

create table ambiente_indicadorespainelindicador (
  id integer not null primary key,
  id_painelindicador integer not null,
  dataprocessor varchar(120) not null,
  ordem integer not null,
  foreign key (id_painelindicador) references ambiente_paineisindicador (id)
);

create table ambiente_secoesfavorito (
  id integer not null primary key,
  descricao varchar(80) not null,
  id_usuario integer not null,
  foreign key (id_usuario) references ambiente_usuarios (id)
);

create table ambiente_favoritos (
  id integer not null primary key,
  id_secaofavorito integer not null,
  descricao varchar(80) not null,
  plugin varchar(80) not null,
  icone varchar(60),
  telainicial integer not null,
  abrir integer not null,
  foreign key (id_secaofavorito) references ambiente_secoesfavorito (id)
);

create table genericos_areasusuario (
  id integer not null primary key,
  codigo varchar(30) not null,
  descricao varchar(80) not null
);

create table genericos_areasusuariousuario (
  id_areausuario integer not null,
  id_usuario integer not null,
  primary key (id_areausuario, id_usuario),
  foreign key (id_areausuario) references genericos_areasusuario (id),
  foreign key (id_usuario) references ambiente_usuarios (id)
);

create table ambiente_pluginsrecomendado (
  id integer not null primary key,
  plugin varchar(80) not null,
  icone varchar(60),
  id_areausuario integer,
  foreign key (id_areausuario) references genericos_areasusuario (id)
);

create table desempenho_alunosturma (
  id integer not null primary key,
  id_usuario integer,
  id_unidade integer not null,
  datalimiteacesso date,
  foreign key (id_usuario) references ambiente_usuarios (id),
  foreign key (id_unidade) references ambiente_unidades (id)
);

-- What is taught, by whom, and when.

create table escola_cursos (
  id integer not null primary key,
  nome varchar(80) not null,
  nivel varchar(20) not null,
  duracao_anos integer not null,
  mensalidade decimal(10,2) not null,
  id_unidadematriz integer,
  foreign key (id_unidadematriz) references ambiente_unidades (id)
);

create table escola_disciplinas (
  id integer not null primary key,
  sigla varchar(5) not null,
  nome varchar(60) not null,
  area varchar(30) not null,
  aulas_semanais integer not null,
  id_unidade integer,
  ementa text,
  foreign key (id_unidade) references ambiente_unidades (id)
);

create table escola_eventos (
  id integer not null primary key,
  id_unidade integer,
  data date not null,
  descricao varchar(120) not null,
  tipo varchar(20) not null,
  dia_letivo integer not null,
  foreign key (id_unidade) references ambiente_unidades (id)
);

create table escola_funcionarios (
  id integer not null primary key,
  id_unidade integer,
  id_unidadematriz integer not null,
  id_usuario integer,
  nome varchar(120) not null,
  cpf char(14) not null,
  cargo varchar(60) not null,
  email varchar(120),
  telefone varchar(20),
  data_admissao date not null,
  data_demissao date,
  salario decimal(10,2) not null,
  horas_semanais integer not null,
  observacao text,
  foreign key (id_unidade) references ambiente_unidades (id),
  foreign key (id_unidadematriz) references ambiente_unidades (id),
  foreign key (id_usuario) references ambiente_usuarios (id)
);

create table escola_turmas (
  id integer not null primary key,
  id_unidade integer not null,
  id_curso integer not null,
  ano integer not null,
  serie integer not null,
  turno varchar(12) not null,
  nome varchar(40) not null,
  id_professorresponsavel integer,
  sala varchar(10),
  capacidade integer not null,
  data_inicio date not null,
  data_fim date not null,
  mensalidade decimal(10,2) not null,
  observacao text,
  foreign key (id_unidade) references ambiente_unidades (id),
  foreign key (id_curso) references escola_cursos (id),
  foreign key (id_professorresponsavel) references escola_funcionarios (id)
);

create table escola_turmasdisciplinas (
  id_turma integer not null,
  id_disciplina integer not null,
  id_professor integer not null,
  primary key (id_turma, id_disciplina),
  foreign key (id_turma) references escola_turmas (id),
  foreign key (id_disciplina) references escola_disciplinas (id),
  foreign key (id_professor) references escola_funcionarios (id)
);

-- Students and all that their years leave behind.

create table escola_responsaveis (
  id integer not null primary key,
  nome varchar(120) not null,
  cpf char(14) not null,
  parentesco varchar(20) not null,
  telefone varchar(20) not null,
  email varchar(120),
  profissao varchar(60)
);

create table escola_alunos (
  id integer not null primary key,
  id_unidade integer not null,
  id_responsavel integer,
  id_usuario integer,
  registro char(10) not null,
  nome varchar(120) not null,
  nome_social varchar(120),
  cpf char(14),
  data_nascimento date not null,
  sexo char(1) not null,
  email varchar(120),
  telefone varchar(20),
  endereco varchar(120) not null,
  bairro varchar(60),
  cidade varchar(60) not null,
  uf char(2) not null,
  cep char(9),
  renda_familiar double,
  data_cadastro datetime not null,
  foto blob,
  observacao text not null,
  foreign key (id_unidade) references ambiente_unidades (id),
  foreign key (id_responsavel) references escola_responsaveis (id),
  foreign key (id_usuario) references ambiente_usuarios (id)
);

create table escola_matriculas (
  id integer not null primary key,
  id_unidade integer not null,
  id_aluno integer not null,
  id_turma integer not null,
  numero integer not null,
  data_matricula date not null,
  data_saida date,
  situacao varchar(24) not null,
  bolsa_percentual integer,
  media_final double,
  observacao text not null,
  foreign key (id_unidade) references ambiente_unidades (id),
  foreign key (id_aluno) references escola_alunos (id),
  foreign key (id_turma) references escola_turmas (id)
);

create table escola_notas (
  id integer not null primary key,
  id_unidade integer not null,
  id_matricula integer not null,
  id_disciplina integer not null,
  bimestre integer not null,
  nota double,
  recuperacao double,
  faltas integer,
  lancada_em date,
  diario varchar(24) not null,
  foreign key (id_matricula) references escola_matriculas (id),
  foreign key (id_disciplina) references escola_disciplinas (id)
);

create table escola_frequencias (
  id integer not null primary key,
  id_unidade integer not null,
  id_matricula integer not null,
  mes date not null,
  dias_letivos integer not null,
  faltas integer,
  justificadas integer,
  foreign key (id_matricula) references escola_matriculas (id)
);

create table escola_faturas (
  id integer not null primary key,
  id_unidade integer not null,
  id_matricula integer not null,
  competencia date not null,
  vencimento date not null,
  valor decimal(10,2) not null,
  desconto decimal(10,2),
  valor_pago decimal(10,2) not null,
  situacao varchar(12) not null,
  emitida_em datetime not null,
  descricao varchar(60) not null,
  foreign key (id_matricula) references escola_matriculas (id)
);

create table escola_pagamentos (
  id integer not null primary key,
  id_unidade integer not null,
  id_fatura integer not null,
  pago_em datetime not null,
  valor decimal(10,2) not null,
  encargos decimal(10,2),
  forma varchar(12) not null,
  documento varchar(40) not null,
  foreign key (id_fatura) references escola_faturas (id)
);
