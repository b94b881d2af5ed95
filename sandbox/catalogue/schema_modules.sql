-- Tables of other modules of the suite that may tie a record of theirs to a product. A database has the tables of the
-- modules that were bought; the sample catalogue loads none, the first two, or all three of these batches.

-- Membership: what a member's quota is billed as.
CREATE TABLE tbAssociados_Quotas_Tipos (
  quota_tipo_id INT NOT NULL,
  descrit VARCHAR(100) NULL,
  produto_id INT NULL,
  CONSTRAINT PK_tbAssociados_Quotas_Tipos PRIMARY KEY (quota_tipo_id)
)
GO

-- Treatments and what they are billed as.
CREATE TABLE tbTratamentos (
  tratamento_id INT NOT NULL,
  descrit VARCHAR(100) NULL,
  produto_id INT NULL,
  CONSTRAINT PK_tbTratamentos PRIMARY KEY (tratamento_id)
)
GO

-- Events: kinds of additional services.
CREATE TABLE tbProjectos_Servicos_Tipos (
  servico_tipo_id INT NOT NULL,
  descrit VARCHAR(100) NULL,
  produto_id INT NULL,
  CONSTRAINT PK_tbProjectos_Servicos_Tipos PRIMARY KEY (servico_tipo_id)
)
GO
