CREATE SCHEMA sales
GO
CREATE TABLE dbo.T (a int NULL)
GO
CREATE TABLE sales.T (a int NULL, b int NULL)
GO
CREATE TABLE dbo.Moved (a int NULL)
GO
