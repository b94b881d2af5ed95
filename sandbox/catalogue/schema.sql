-- The tables and views of the suite's database that the product catalogue reads and writes.
-- Batches end at a line that holds only GO. Flags are on when they are neither null nor 0.
-- Quantities and prices that a user types are FLOAT: prices are kept to five decimals, which MONEY would cut to four.

-- Named counters: the next product code and the next product identifier.
CREATE TABLE tbContadores (
  nome VARCHAR(50) NOT NULL,
  contador INT NOT NULL,
  CONSTRAINT PK_tbContadores PRIMARY KEY (nome)
)
GO

-- People and companies: staff, suppliers, customers. nome_union is the name as lists and documents show it.
CREATE TABLE tbContactos (
  contacto_id INT NOT NULL,
  nome NVARCHAR(150) NULL,
  apelido NVARCHAR(100) NULL,
  nome_union NVARCHAR(255) NULL,
  nif VARCHAR(20) NULL,
  localidade NVARCHAR(80) NULL,
  is_cliente BIT NULL CONSTRAINT DF_tbContactos_is_cliente DEFAULT (0),
  is_fornecedor BIT NULL CONSTRAINT DF_tbContactos_is_fornecedor DEFAULT (0),
  CONSTRAINT PK_tbContactos PRIMARY KEY (contacto_id)
)
GO

CREATE INDEX IX_tbContactos_nome_union ON tbContactos (nome_union)
GO

CREATE VIEW vwFornecedores AS
SELECT contacto_id, nome_union, nif, localidade
FROM tbContactos
WHERE is_fornecedor <> 0
GO

-- descrit is the name of the session user, which is also the name of the login.
CREATE TABLE tbUsers (
  user_id INT NOT NULL,
  code VARCHAR(20) NULL,
  descrit VARCHAR(50) NOT NULL,
  contacto_id INT NULL,
  CONSTRAINT PK_tbUsers PRIMARY KEY (user_id),
  CONSTRAINT UQ_tbUsers_descrit UNIQUE (descrit)
)
GO

CREATE TABLE tbGroups (
  group_id INT NOT NULL,
  code VARCHAR(20) NULL,
  descrit VARCHAR(100) NULL,
  CONSTRAINT PK_tbGroups PRIMARY KEY (group_id)
)
GO

CREATE TABLE tbGroups_Users_Links (
  group_id INT NOT NULL,
  user_id INT NOT NULL,
  CONSTRAINT PK_tbGroups_Users_Links PRIMARY KEY (group_id, user_id),
  CONSTRAINT FK_tbGroups_Users_Links_tbGroups FOREIGN KEY (group_id) REFERENCES tbGroups (group_id),
  CONSTRAINT FK_tbGroups_Users_Links_tbUsers FOREIGN KEY (user_id) REFERENCES tbUsers (user_id)
)
GO

-- users_groups lists tokens: "1" and a user or group code grants the policy, "2" and a code excludes.
CREATE TABLE tbSecurityPolicies (
  policy_id INT NOT NULL,
  code VARCHAR(20) NULL,
  descrit VARCHAR(150) NULL,
  users_groups VARCHAR(MAX) NULL,
  CONSTRAINT PK_tbSecurityPolicies PRIMARY KEY (policy_id)
)
GO

-- sql_gateway: the warehouse works directly on this database. can_modify_produts: products may be changed from it.
CREATE TABLE tbArmazens (
  armazem_id INT NOT NULL,
  descrit VARCHAR(100) NULL,
  sql_gateway SMALLINT NULL,
  can_modify_produts SMALLINT NULL,
  has_stocks BIT NULL,
  CONSTRAINT PK_tbArmazens PRIMARY KEY (armazem_id)
)
GO

CREATE TABLE tbCentros_Custo (
  centro_id INT NOT NULL,
  codigo VARCHAR(20) NOT NULL,
  descrit VARCHAR(100) NOT NULL,
  CONSTRAINT PK_tbCentros_Custo PRIMARY KEY (centro_id)
)
GO

CREATE VIEW vwCentros_Custo AS
SELECT centro_id, codigo, descrit, codigo + ' - ' + descrit AS descrit2
FROM tbCentros_Custo
GO

-- tx is a fraction: 0.23 for 23 %.
CREATE TABLE tbTaxas_Iva (
  iva_id INT NOT NULL,
  codigo VARCHAR(10) NOT NULL,
  descrit VARCHAR(80) NOT NULL,
  tx FLOAT NULL,
  predef BIT NULL CONSTRAINT DF_tbTaxas_Iva_predef DEFAULT (0),
  CONSTRAINT PK_tbTaxas_Iva PRIMARY KEY (iva_id)
)
GO

CREATE VIEW vwTaxas_Iva AS
SELECT iva_id, codigo, descrit, tx, predef, codigo + ' - ' + descrit AS descrit2
FROM tbTaxas_Iva
GO

-- Reasons for charging no VAT, by the code and the article of the law.
CREATE TABLE tbTaxas_IVA_Insencoes (
  isencao_id INT NOT NULL,
  codigo VARCHAR(10) NULL,
  descrit VARCHAR(200) NULL,
  CONSTRAINT PK_tbTaxas_IVA_Insencoes PRIMARY KEY (isencao_id)
)
GO

-- What a product of a type has: the attributes that can be entered, and stock (a null has_stocks keeps stock).
CREATE TABLE tbProdutos_Tipos (
  tipo_id INT NOT NULL,
  descrit VARCHAR(80) NULL,
  predef BIT NULL CONSTRAINT DF_tbProdutos_Tipos_predef DEFAULT (0),
  tamanho BIT NULL,
  cor BIT NULL,
  altura BIT NULL,
  largura BIT NULL,
  profundidade BIT NULL,
  has_stocks BIT NULL,
  CONSTRAINT PK_tbProdutos_Tipos PRIMARY KEY (tipo_id)
)
GO

CREATE TABLE tbProdutos_Familias (
  familia_id INT NOT NULL,
  descrit VARCHAR(100) NULL,
  CONSTRAINT PK_tbProdutos_Familias PRIMARY KEY (familia_id)
)
GO

CREATE TABLE tbProdutos_Subfamilias (
  subfamilia_id INT NOT NULL,
  familia_id INT NOT NULL,
  descrit VARCHAR(100) NULL,
  CONSTRAINT PK_tbProdutos_Subfamilias PRIMARY KEY (subfamilia_id),
  CONSTRAINT FK_tbProdutos_Subfamilias_tbProdutos_Familias FOREIGN KEY (familia_id)
    REFERENCES tbProdutos_Familias (familia_id)
)
GO

CREATE INDEX IX_tbProdutos_Subfamilias_familia_id ON tbProdutos_Subfamilias (familia_id)
GO

-- The code of a colour and of a size becomes part of the code of a dependent product.
CREATE TABLE tbProdutos_Cores (
  cor_id INT NOT NULL,
  descrit VARCHAR(50) NULL,
  code VARCHAR(10) NULL,
  CONSTRAINT PK_tbProdutos_Cores PRIMARY KEY (cor_id)
)
GO

CREATE TABLE tbProdutos_Tamanhos (
  tamanho_id INT NOT NULL,
  descrit VARCHAR(50) NULL,
  code VARCHAR(10) NULL,
  CONSTRAINT PK_tbProdutos_Tamanhos PRIMARY KEY (tamanho_id)
)
GO

-- The product master. cor and tamanho hold the text of a colour and of a size, even where that is a number ("42").
-- codigo cannot be unique: a deleted product keeps its row and its code, and the code may be given again.
-- main_id has no foreign key: a main product that was never saved is removed before its dependent products.
CREATE TABLE tbProdutos (
  produto_id INT NOT NULL,
  codigo VARCHAR(40) NULL,
  nome VARCHAR(250) NULL,
  familia_id INT NULL,
  subfamilia_id INT NULL,
  fornecedor_id INT NULL,
  marca VARCHAR(100) NULL,
  obs VARCHAR(MAX) NULL,
  tipo_id INT NULL,
  centro_id INT NULL,
  tamanho VARCHAR(50) NULL,
  cor VARCHAR(50) NULL,
  altura FLOAT NULL,
  largura FLOAT NULL,
  profundidade FLOAT NULL,
  descontinuado BIT NULL CONSTRAINT DF_tbProdutos_descontinuado DEFAULT (0),
  main_id INT NULL,
  is_deleted BIT NULL CONSTRAINT DF_tbProdutos_is_deleted DEFAULT (0),
  data_created DATETIME NULL CONSTRAINT DF_tbProdutos_data_created DEFAULT (GETDATE()),
  data_modified DATETIME NULL CONSTRAINT DF_tbProdutos_data_modified DEFAULT (GETDATE()),
  CONSTRAINT PK_tbProdutos PRIMARY KEY (produto_id)
)
GO

CREATE INDEX IX_tbProdutos_codigo ON tbProdutos (codigo)
GO

CREATE INDEX IX_tbProdutos_main_id ON tbProdutos (main_id, cor, tamanho)
GO

CREATE INDEX IX_tbProdutos_familia_id ON tbProdutos (familia_id, subfamilia_id, nome)
GO

CREATE INDEX IX_tbProdutos_marca ON tbProdutos (marca)
GO

-- Price lists. predef_venda marks the one that sells by default.
CREATE TABLE tbProdutos_Precos_Tipos (
  tipo_id INT NOT NULL,
  descrit VARCHAR(80) NULL,
  predef_venda BIT NULL CONSTRAINT DF_tbProdutos_Precos_Tipos_predef_venda DEFAULT (0),
  CONSTRAINT PK_tbProdutos_Precos_Tipos PRIMARY KEY (tipo_id)
)
GO

-- preco is without VAT, iva the VAT amount, preco_total with VAT; desconto is a fraction.
CREATE TABLE tbProdutos_Precos (
  tipo_id INT NOT NULL,
  produto_id INT NOT NULL,
  preco FLOAT NULL,
  iva_id INT NULL,
  iva FLOAT NULL,
  preco_total FLOAT NULL,
  iva_descrit VARCHAR(200) NULL,
  desconto FLOAT NULL,
  predef BIT NULL CONSTRAINT DF_tbProdutos_Precos_predef DEFAULT (0),
  CONSTRAINT PK_tbProdutos_Precos PRIMARY KEY (tipo_id, produto_id),
  CONSTRAINT FK_tbProdutos_Precos_tbProdutos FOREIGN KEY (produto_id) REFERENCES tbProdutos (produto_id)
)
GO

CREATE INDEX IX_tbProdutos_Precos_produto_id ON tbProdutos_Precos (produto_id)
GO

CREATE TABLE tbProdutos_Stocks (
  produto_id INT NOT NULL,
  armazem_id INT NOT NULL,
  unidades FLOAT NULL CONSTRAINT DF_tbProdutos_Stocks_unidades DEFAULT (0),
  unidades_enc_clientes FLOAT NULL,
  unidades_enc_fornec FLOAT NULL,
  CONSTRAINT PK_tbProdutos_Stocks PRIMARY KEY (produto_id, armazem_id),
  CONSTRAINT FK_tbProdutos_Stocks_tbProdutos FOREIGN KEY (produto_id) REFERENCES tbProdutos (produto_id)
)
GO

CREATE TABLE tbProdutos_Stocks_Minimos (
  produto_id INT NOT NULL,
  armazem_id INT NOT NULL,
  unidades FLOAT NULL,
  reposicao FLOAT NULL,
  CONSTRAINT PK_tbProdutos_Stocks_Minimos PRIMARY KEY (produto_id, armazem_id),
  CONSTRAINT FK_tbProdutos_Stocks_Minimos_tbProdutos FOREIGN KEY (produto_id) REFERENCES tbProdutos (produto_id)
)
GO

-- Documents of sale. The line views carry no column named data, and the headers no produto_id, quantidade,
-- preco_unitario or preco_total: the history joins them and names these columns without their table.
CREATE TABLE tbDocumentos_Tipos (
  tipo_doc_id INT NOT NULL,
  code VARCHAR(10) NOT NULL,
  descrit VARCHAR(80) NULL,
  change_stocks SMALLINT NULL,
  peso SMALLINT NOT NULL CONSTRAINT DF_tbDocumentos_Tipos_peso DEFAULT (1),
  CONSTRAINT PK_tbDocumentos_Tipos PRIMARY KEY (tipo_doc_id)
)
GO

CREATE TABLE tbDocumentos (
  armazem_id INT NOT NULL,
  documento_main_id INT NOT NULL,
  tipo_doc_id INT NOT NULL,
  documento_no VARCHAR(30) NOT NULL,
  data DATETIME NOT NULL,
  contacto_id INT NULL,
  nome NVARCHAR(255) NULL,
  total MONEY NULL,
  anulado BIT NULL,
  CONSTRAINT PK_tbDocumentos PRIMARY KEY (armazem_id, documento_main_id)
)
GO

CREATE INDEX IX_tbDocumentos_data ON tbDocumentos (data)
GO

CREATE TABLE tbDocumentos_Items (
  armazem_id INT NOT NULL,
  documento_item_id INT NOT NULL,
  documento_main_id INT NOT NULL,
  produto_id INT NULL,
  descrit VARCHAR(250) NULL,
  quantidade DECIMAL(18,3) NULL,
  preco_unitario MONEY NULL,
  preco_total MONEY NULL,
  CONSTRAINT PK_tbDocumentos_Items PRIMARY KEY (armazem_id, documento_item_id),
  CONSTRAINT FK_tbDocumentos_Items_tbDocumentos FOREIGN KEY (armazem_id, documento_main_id)
    REFERENCES tbDocumentos (armazem_id, documento_main_id)
)
GO

CREATE INDEX IX_tbDocumentos_Items_produto_id ON tbDocumentos_Items (produto_id)
GO

CREATE INDEX IX_tbDocumentos_Items_documento_main_id ON tbDocumentos_Items (armazem_id, documento_main_id)
GO

CREATE VIEW vwDocumentos_Details AS
SELECT armazem_id, documento_item_id, documento_main_id, produto_id, descrit, quantidade, preco_unitario, preco_total
FROM tbDocumentos_Items
GO

-- Documents of purchase.
CREATE TABLE tbDocumentos_Fornec_Tipos (
  tipo_doc_id INT NOT NULL,
  code VARCHAR(10) NOT NULL,
  descrit VARCHAR(80) NULL,
  change_stocks SMALLINT NULL,
  peso SMALLINT NOT NULL CONSTRAINT DF_tbDocumentos_Fornec_Tipos_peso DEFAULT (1),
  CONSTRAINT PK_tbDocumentos_Fornec_Tipos PRIMARY KEY (tipo_doc_id)
)
GO

CREATE TABLE tbDocumentos_Fornec (
  armazem_id INT NOT NULL,
  documento_main_id INT NOT NULL,
  tipo_doc_id INT NOT NULL,
  documento_no VARCHAR(30) NOT NULL,
  data DATETIME NOT NULL,
  contacto_id INT NULL,
  nome NVARCHAR(255) NULL,
  total MONEY NULL,
  anulado BIT NULL,
  CONSTRAINT PK_tbDocumentos_Fornec PRIMARY KEY (armazem_id, documento_main_id)
)
GO

CREATE INDEX IX_tbDocumentos_Fornec_data ON tbDocumentos_Fornec (data)
GO

CREATE TABLE tbDocumentos_Fornec_Items (
  armazem_id INT NOT NULL,
  documento_item_id INT NOT NULL,
  documento_main_id INT NOT NULL,
  produto_id INT NULL,
  descrit VARCHAR(250) NULL,
  quantidade DECIMAL(18,3) NULL,
  preco_unitario MONEY NULL,
  preco_total MONEY NULL,
  CONSTRAINT PK_tbDocumentos_Fornec_Items PRIMARY KEY (armazem_id, documento_item_id),
  CONSTRAINT FK_tbDocumentos_Fornec_Items_tbDocumentos_Fornec FOREIGN KEY (armazem_id, documento_main_id)
    REFERENCES tbDocumentos_Fornec (armazem_id, documento_main_id)
)
GO

CREATE INDEX IX_tbDocumentos_Fornec_Items_produto_id ON tbDocumentos_Fornec_Items (produto_id)
GO

CREATE INDEX IX_tbDocumentos_Fornec_Items_documento_main_id
  ON tbDocumentos_Fornec_Items (armazem_id, documento_main_id)
GO

CREATE VIEW vwDocumentos_Fornec_Details AS
SELECT armazem_id, documento_item_id, documento_main_id, produto_id, descrit, quantidade, preco_unitario, preco_total
FROM tbDocumentos_Fornec_Items
GO

-- Orders of customers. Their line view gives the number of the order also as documento_no, the name under which
-- the history shows a line's document.
CREATE TABLE tbEncomendas (
  armazem_id INT NOT NULL,
  encomenda_main_id INT NOT NULL,
  encomenda_no VARCHAR(30) NOT NULL,
  data DATETIME NOT NULL,
  contacto_id INT NULL,
  nome NVARCHAR(255) NULL,
  total MONEY NULL,
  satisfeita BIT NULL,
  anulada BIT NULL,
  CONSTRAINT PK_tbEncomendas PRIMARY KEY (armazem_id, encomenda_main_id)
)
GO

CREATE INDEX IX_tbEncomendas_data ON tbEncomendas (data)
GO

CREATE TABLE tbEncomendas_Items (
  armazem_id INT NOT NULL,
  encomenda_item_id INT NOT NULL,
  encomenda_main_id INT NOT NULL,
  produto_id INT NULL,
  descrit VARCHAR(250) NULL,
  quantidade DECIMAL(18,3) NULL,
  preco_unitario MONEY NULL,
  preco_total MONEY NULL,
  CONSTRAINT PK_tbEncomendas_Items PRIMARY KEY (armazem_id, encomenda_item_id),
  CONSTRAINT FK_tbEncomendas_Items_tbEncomendas FOREIGN KEY (armazem_id, encomenda_main_id)
    REFERENCES tbEncomendas (armazem_id, encomenda_main_id)
)
GO

CREATE INDEX IX_tbEncomendas_Items_produto_id ON tbEncomendas_Items (produto_id)
GO

CREATE INDEX IX_tbEncomendas_Items_encomenda_main_id ON tbEncomendas_Items (armazem_id, encomenda_main_id)
GO

CREATE VIEW vwEncomendas_Details AS
SELECT tbEncomendas_Items.armazem_id, tbEncomendas_Items.encomenda_item_id, tbEncomendas_Items.encomenda_main_id,
  tbEncomendas_Items.produto_id, tbEncomendas_Items.descrit, tbEncomendas_Items.quantidade,
  tbEncomendas_Items.preco_unitario, tbEncomendas_Items.preco_total, tbEncomendas.encomenda_no AS documento_no
FROM tbEncomendas_Items
LEFT JOIN tbEncomendas ON tbEncomendas.armazem_id = tbEncomendas_Items.armazem_id
  AND tbEncomendas.encomenda_main_id = tbEncomendas_Items.encomenda_main_id
GO

-- Orders to suppliers.
CREATE TABLE tbEncomendas_Fornec (
  armazem_id INT NOT NULL,
  encomenda_main_id INT NOT NULL,
  encomenda_no VARCHAR(30) NOT NULL,
  data DATETIME NOT NULL,
  contacto_id INT NULL,
  nome NVARCHAR(255) NULL,
  total MONEY NULL,
  satisfeita BIT NULL,
  anulada BIT NULL,
  CONSTRAINT PK_tbEncomendas_Fornec PRIMARY KEY (armazem_id, encomenda_main_id)
)
GO

CREATE INDEX IX_tbEncomendas_Fornec_data ON tbEncomendas_Fornec (data)
GO

CREATE TABLE tbEncomendas_Fornec_Items (
  armazem_id INT NOT NULL,
  encomenda_item_id INT NOT NULL,
  encomenda_main_id INT NOT NULL,
  produto_id INT NULL,
  descrit VARCHAR(250) NULL,
  quantidade DECIMAL(18,3) NULL,
  preco_unitario MONEY NULL,
  preco_total MONEY NULL,
  CONSTRAINT PK_tbEncomendas_Fornec_Items PRIMARY KEY (armazem_id, encomenda_item_id),
  CONSTRAINT FK_tbEncomendas_Fornec_Items_tbEncomendas_Fornec FOREIGN KEY (armazem_id, encomenda_main_id)
    REFERENCES tbEncomendas_Fornec (armazem_id, encomenda_main_id)
)
GO

CREATE INDEX IX_tbEncomendas_Fornec_Items_produto_id ON tbEncomendas_Fornec_Items (produto_id)
GO

CREATE INDEX IX_tbEncomendas_Fornec_Items_encomenda_main_id
  ON tbEncomendas_Fornec_Items (armazem_id, encomenda_main_id)
GO

CREATE VIEW vwEncomendas_Fornec_Details AS
SELECT tbEncomendas_Fornec_Items.armazem_id, tbEncomendas_Fornec_Items.encomenda_item_id,
  tbEncomendas_Fornec_Items.encomenda_main_id, tbEncomendas_Fornec_Items.produto_id,
  tbEncomendas_Fornec_Items.descrit, tbEncomendas_Fornec_Items.quantidade,
  tbEncomendas_Fornec_Items.preco_unitario, tbEncomendas_Fornec_Items.preco_total,
  tbEncomendas_Fornec.encomenda_no AS documento_no
FROM tbEncomendas_Fornec_Items
LEFT JOIN tbEncomendas_Fornec ON tbEncomendas_Fornec.armazem_id = tbEncomendas_Fornec_Items.armazem_id
  AND tbEncomendas_Fornec.encomenda_main_id = tbEncomendas_Fornec_Items.encomenda_main_id
GO
